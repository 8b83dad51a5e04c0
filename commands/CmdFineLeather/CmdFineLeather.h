#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdFineLeatherDlg.h"

namespace CmdFineLeather {

extern const SCommandDescription kDescription;

class CCmdFineLeather final : public TTextureCommand<CCmdFineLeather, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;
};

class CCmdFineLeatherResData final : public TTextureResData<kDescription, CCmdFineLeatherDlg> {};

}  // namespace CmdFineLeather
