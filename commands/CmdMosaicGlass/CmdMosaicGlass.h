#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdMosaicGlassDlg.h"

namespace CmdMosaicGlass {

extern const SCommandDescription kDescription;

class CCmdMosaicGlass final : public TTextureCommand<CCmdMosaicGlass, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;
};

class CCmdMosaicGlassResData final : public TTextureResData<kDescription, CCmdMosaicGlassDlg> {};

}  // namespace CmdMosaicGlass
