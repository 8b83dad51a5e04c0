#pragma once

#include <string>
#include <vector>

#include "host/core/CString.h"

enum class EControlKind {
    Label,     // text beside a field, or a line of its own
    Number,    // a field for a whole number, with a spin button
    Check,     // a check box with its own text
    Swatch,    // shows a colour and lets the user choose another
    Dial,      // turns an angle; stands beside the field of the same parameter
    List,      // a closed list of texts
    Resource,  // a button that shows a picture of the library and opens the library
    Button,    // a push button
};

struct SControlTemplate {
    int id = 0;
    EControlKind kind = EControlKind::Label;
    CString text;  // of check boxes and push buttons; empty for the others
};

// One line of a dialog: a label at the left and one or more controls beside it. Check boxes carry
// their own text and have no label. The toolkit gives every text the room that it needs.
struct STemplateRow {
    CString label;
    int label_id = 0;  // the label's control id; 0 when the dialog never speaks to it
    std::vector<SControlTemplate> controls;
};

struct STemplateGroup {
    CString title;
    std::vector<STemplateRow> rows;
};

// What a dialog is made from, its texts in the language of the resource module. It says what stands
// with what; positions and sizes are the toolkit's.
struct SDialogTemplate {
    int id = 0;
    CString title;
    std::vector<STemplateGroup> groups;

    // The ids of the controls of a kind, in their order.
    std::vector<int> ControlsOf(EControlKind kind) const {
        std::vector<int> ids;
        for (const STemplateGroup& group : groups) {
            for (const STemplateRow& row : group.rows) {
                for (const SControlTemplate& control : row.controls) {
                    if (control.kind == kind) ids.push_back(control.id);
                }
            }
        }
        return ids;
    }
};

// Reads the JSON form of a template, as the language compiler writes it. Throws CNException, code
// 105, for anything else.
SDialogTemplate ParseDialogTemplate(int id, const std::string& json);
