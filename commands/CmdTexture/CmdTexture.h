#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdTextureDlg.h"

namespace CmdTexture {

extern const SCommandDescription kDescription;

class CCmdTexture final : public TTextureCommand<CCmdTexture, kDescription> {
  public:
    CCmdTexture() = default;
    CCmdTexture(const CCmdTexture& other) : TTextureCommand(other) {}

    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;

  private:
    // The context that the texture is looked up in; a clone starts without one.
    TRef<ICommandExecutionContext> context_;
};

class CCmdTextureResData final : public TTextureResData<kDescription, CCmdTextureDlg> {};

}  // namespace CmdTexture
