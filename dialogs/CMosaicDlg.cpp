#include "dialogs/CMosaicDlg.h"

// Setting a control reports nothing, so the copy does not come back as a change of its own.
void CMosaicDlg::OnNumberSet(const SControlRow& row) {
    const bool count = row.parameter == counts_.rows || row.parameter == counts_.columns;
    if (!count || !Value(counts_.symmetric).number) return;
    const int other = counts_.rows + counts_.columns - row.parameter;
    Value(other).number = Value(row.parameter).number;
    ShowParameter(other);
}

// Counts that are equal, or go their own ways from now on, make no other picture.
void CMosaicDlg::OnCheckClicked(const SControlRow& row, bool checked) {
    Value(row.parameter).number = checked ? 1 : 0;
    if (!checked || Value(counts_.rows).number == Value(counts_.columns).number) return;
    Value(counts_.rows).number = Value(counts_.columns).number;
    ShowParameter(counts_.rows);
    StoreAndPreview();
}

void CMosaicDlg::ReconcileParameters() {
    LoadParameters();
    if (!Value(counts_.symmetric).number) return;
    Value(counts_.rows).number = Value(counts_.columns).number;
    StoreParameters();
}
