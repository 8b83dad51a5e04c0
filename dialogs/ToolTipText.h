#pragma once

#include "dialogs/CParameterDlg.h"

// The text of a control's tool tip. The range is the field's current one.
CString TipOf(const SControlRow& row, IParameterRepository* repository, std::int32_t minimum,
              std::int32_t maximum);
// Puts as much of the text into the notification's buffer as it holds.
void CopyToolTip(const CString& text, TOOLTIPTEXTW& info);
