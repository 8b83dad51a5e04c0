#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdSandstoneDlg.h"

namespace CmdSandstone {

extern const SCommandDescription kDescription;

class CCmdSandstone final : public TTextureCommand<CCmdSandstone, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdSandstoneResData final : public TTextureResData<kDescription, CCmdSandstoneDlg> {};

}  // namespace CmdSandstone
