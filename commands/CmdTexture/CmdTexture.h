#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CResourceParameterDlg.h"

namespace CmdTexture {

extern const SResourceTable kDialog;
extern const SCommandDescription kDescription;

class CCmdTexture final : public TWholeImageCommand<CCmdTexture, kDescription> {
  public:
    CCmdTexture() = default;
    CCmdTexture(const CCmdTexture& other) : TWholeImageCommand(other) {}

    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);

  private:
    // The context that the texture is looked up in; a clone starts without one.
    TRef<ICommandExecutionContext> context_;
};

class CCmdTextureDlg final : public TDialog<kDialog, CResourceParameterDlg> {
    using TDialog::TDialog;
};
class CCmdTextureResData final : public TTextureResData<kDescription, CCmdTextureDlg> {};

}  // namespace CmdTexture
