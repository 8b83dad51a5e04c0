#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CWeaveDlg.h"

namespace CmdWeave {

extern const SCommandDescription kDescription;

class CCmdWeave final : public TTextureCommand<CCmdWeave, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    bool WorksAt16Bits() const override { return false; }
};

class CCmdWeaveResData final : public TTextureResData<kDescription, CWeaveDlg> {};

}  // namespace CmdWeave
