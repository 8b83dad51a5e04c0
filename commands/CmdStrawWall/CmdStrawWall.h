#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdStrawWallDlg.h"

namespace CmdStrawWall {

extern const SCommandDescription kDescription;

class CCmdStrawWall final : public TTextureCommand<CCmdStrawWall, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdStrawWallResData final : public TTextureResData<kDescription, CCmdStrawWallDlg> {};

}  // namespace CmdStrawWall
