#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdPolishedStoneDlg.h"

namespace CmdPolishedStone {

extern const SCommandDescription kDescription;

class CCmdPolishedStone final : public TTextureCommand<CCmdPolishedStone, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdPolishedStoneResData final : public TTextureResData<kDescription, CCmdPolishedStoneDlg> {
};

}  // namespace CmdPolishedStone
