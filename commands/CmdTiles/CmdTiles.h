#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdTilesDlg.h"

namespace CmdTiles {

extern const SCommandDescription kDescription;

class CCmdTiles final : public TTextureCommand<CCmdTiles, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;
};

class CCmdTilesResData final : public TTextureResData<kDescription, CCmdTilesDlg> {};

}  // namespace CmdTiles
