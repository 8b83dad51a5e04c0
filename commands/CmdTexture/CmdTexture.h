#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdTextureDlg.h"

namespace CmdTexture {

extern const SCommandDescription kDescription;

class CCmdTexture final : public TTextureCommand<CCmdTexture, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;
};

class CCmdTextureResData final : public TTextureResData<kDescription, CCmdTextureDlg> {};

}  // namespace CmdTexture
