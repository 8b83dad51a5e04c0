#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdRoughLeatherDlg.h"

namespace CmdRoughLeather {

extern const SCommandDescription kDescription;

class CCmdRoughLeather final : public TTextureCommand<CCmdRoughLeather, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdRoughLeatherResData final : public TTextureResData<kDescription, CCmdRoughLeatherDlg> {};

}  // namespace CmdRoughLeather
