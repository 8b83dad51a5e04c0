#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdFurDlg.h"

namespace CmdFur {

extern const SCommandDescription kDescription;

class CCmdFur final : public TTextureCommand<CCmdFur, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdFurResData final : public TTextureResData<kDescription, CCmdFurDlg> {};

}  // namespace CmdFur
