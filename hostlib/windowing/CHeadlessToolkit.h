#pragma once

#include <functional>
#include <set>

#include "hostlib/windowing/IToolkit.h"

// A toolkit without a screen: a script stands in for the user. It runs once for each dialog that
// opens, acts on the model, and ends the dialog with Ok or Cancel; one that does neither cancels.
class HOST_API CHeadlessToolkit final : public IToolkit {
  public:
    using Script = std::function<void(IDialogModel& dialog)>;

    explicit CHeadlessToolkit(Script script) : script_(std::move(script)) {}
    std::unique_ptr<IDialogView> Open(IDialogModel& model) override;

    // What the dialogs told so far.
    int Previews() const { return previews_; }
    const std::multiset<int>& ChangedControls() const { return changed_; }
    const std::vector<bool>& DropperStates() const { return dropper_; }
    const std::vector<CString>& Messages() const { return messages_; }

  private:
    class CView;

    Script script_;
    int previews_ = 0;
    std::multiset<int> changed_;
    std::vector<bool> dropper_;
    std::vector<CString> messages_;
};
