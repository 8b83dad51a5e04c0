#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdSoftPlasticDlg.h"

namespace CmdSoftPlastic {

extern const SCommandDescription kDescription;

class CCmdSoftPlastic final : public TTextureCommand<CCmdSoftPlastic, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdSoftPlasticResData final : public TTextureResData<kDescription, CCmdSoftPlasticDlg> {};

}  // namespace CmdSoftPlastic
