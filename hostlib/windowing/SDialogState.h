#pragma once

#include <map>
#include <optional>

#include "hostlib/windowing/IToolkit.h"

// What is behind an open dialog: its controls by id, and who shows it.
struct SDialogState {
    bool loaded = false;
    SDialogTemplate description;
    std::map<int, SControlState> controls;
    IDialogView* view = nullptr;         // null while nobody shows the dialog
    std::optional<CNException> failure;  // what ended the dialog, if it was a fault

    SControlState* Find(int id);
    // The controls in their first state, as the template describes them.
    void MakeControls();
    void Show(const SControlState& control) const {
        if (view) view->ControlChanged(control);
    }
};
