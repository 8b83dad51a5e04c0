#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CCmdSculptureDlg.h"

namespace CmdSculpture {

extern const SCommandDescription kDescription;

class CCmdSculpture final : public TTextureCommand<CCmdSculpture, kDescription> {
  public:
    CCmdSculpture() = default;
    CCmdSculpture(const CCmdSculpture& other) : TTextureCommand(other) {}

    CErrorAutoThrow Setup(ICommandExecutionContext* context) override;
    bool BlendsBySelection() const override { return true; }
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
    CErrorAutoThrow ModifyRect(CRect& rect) override;

  private:
    // The context that the pattern is looked up in; a clone starts without one.
    TRef<ICommandExecutionContext> context_;
};

class CCmdSculptureResData final : public TTextureResData<kDescription, CCmdSculptureDlg> {};

}  // namespace CmdSculpture
