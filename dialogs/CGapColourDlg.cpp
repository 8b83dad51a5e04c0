#include "dialogs/CGapColourDlg.h"

// Flips the value, whatever the box shows.
void CGapColourDlg::OnCheckClicked(const SControlRow& row, bool /*checked*/) {
    Value(row.parameter).number = Value(row.parameter).number ? 0 : 1;
    EnableGapColour();
    StoreAndPreview();
}

bool CGapColourDlg::ColourTakesEffect(const SControlRow& row) const {
    return row.parameter != table_.gaps.gap_color || FillsGaps();
}

void CGapColourDlg::EnableGapColour() {
    for (const int id : {table_.gaps.swatch, table_.gaps.label}) EnableControl(id, FillsGaps());
}
