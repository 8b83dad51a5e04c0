#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdMosaicAntiqueDlg.h"

namespace CmdMosaicAntique {

extern const SCommandDescription kDescription;

class CCmdMosaicAntique final : public TTextureCommand<CCmdMosaicAntique, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;
};

class CCmdMosaicAntiqueResData final : public TTextureResData<kDescription, CCmdMosaicAntiqueDlg> {
};

}  // namespace CmdMosaicAntique
