#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CBlindsDlg.h"

namespace CmdBlinds {

extern const SCommandDescription kDescription;

class CCmdBlinds final : public TTextureCommand<CCmdBlinds, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdBlindsResData final : public TTextureResData<kDescription, CBlindsDlg> {};

}  // namespace CmdBlinds
