#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CResourceParameterDlg.h"

namespace CmdSculpture {

extern const SResourceTable kDialog;
extern const SCommandDescription kDescription;

class CCmdSculpture final : public TWholeImageCommand<CCmdSculpture, kDescription> {
  public:
    CCmdSculpture() = default;
    CCmdSculpture(const CCmdSculpture& other) : TWholeImageCommand(other) {}

    CErrorAutoThrow Setup(ICommandExecutionContext* context) override;
    bool BlendsBySelection() const override { return true; }
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);

  private:
    // The context that the pattern is looked up in; a clone starts without one.
    TRef<ICommandExecutionContext> context_;
};

class CCmdSculptureDlg final : public TDialog<kDialog, CResourceParameterDlg> {
    using TDialog::TDialog;
};
class CCmdSculptureResData final : public TTextureResData<kDescription, CCmdSculptureDlg> {};

}  // namespace CmdSculpture
