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

// The count that has changed alone is the one that counts.
void CMosaicDlg::ReconcileParameters() {
    const auto rows = Value(counts_.rows).number;
    const auto columns = Value(counts_.columns).number;
    LoadParameters();
    if (!Value(counts_.symmetric).number) return;
    auto& now_rows = Value(counts_.rows).number;
    auto& now_columns = Value(counts_.columns).number;
    if (now_rows != rows && now_columns == columns) {
        now_columns = now_rows;
    } else {
        now_rows = now_columns;
    }
    StoreParameters();
}
