#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdSculptureDlg.h"

namespace CmdSculpture {

extern const SCommandDescription kDescription;

class CCmdSculpture final : public TTextureCommand<CCmdSculpture, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;
};

class CCmdSculptureResData final : public TTextureResData<kDescription, CCmdSculptureDlg> {};

}  // namespace CmdSculpture
