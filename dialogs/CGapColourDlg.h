#pragma once

#include "dialogs/CParameterDlg.h"

struct SGapColourTable : SDialogTable {
    struct {
        int fill_gaps, gap_color;  // indices of parameters
        int swatch, label;         // the controls that are there while gaps are filled
    } gaps;
};

// A dialog in which one colour counts only while gaps are filled.
class CGapColourDlg : public CParameterDlg {
  protected:
    CGapColourDlg(const SGapColourTable& table, ICommandExecutionContext* context,
                  VCommandImplementation* command, CWnd* parent)
        : CParameterDlg(table, context, command, parent), table_(table) {}

    void OnCheckClicked(const SControlRow& row, bool checked) override;
    bool ColourTakesEffect(const SControlRow& row) const override;
    void OnParametersShown() override { EnableGapColour(); }

  private:
    bool FillsGaps() const { return Value(table_.gaps.fill_gaps).number != 0; }
    void EnableGapColour();

    const SGapColourTable& table_;
};
