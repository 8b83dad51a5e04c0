#include "dialogs/CWeaveDlg.h"

namespace {

constexpr int kFillGaps = 0;
constexpr int kGapColour = 1;
constexpr int kGapColourSwatch = 1571;
constexpr int kGapColourLabel = 1598;

using enum EParameterType;
constexpr EParameterType kParameters[] = {Boolean, Colour, Colour, Integer, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::CanvasNumber(1011, 3, 562, 1),
    control::CanvasNumber(1568, 4, 570, 1),
    control::Number(1094, 5),
    control::Check(1569, kFillGaps).With(EExchange::Control),
    control::Swatch(1570, 2),
    control::Swatch(kGapColourSwatch, kGapColour),
};
const SDialogTable kTable{561, kParameters, kControls};

}  // namespace

CWeaveDlg::CWeaveDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                     CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}

// Flips the value, whatever the box shows.
void CWeaveDlg::OnCheckClicked(const SControlRow& row, bool /*checked*/) {
    Value(row.parameter).number = Value(row.parameter).number ? 0 : 1;
    EnableGapColour();
    StoreAndPreview();
}

bool CWeaveDlg::ColourTakesEffect(const SControlRow& row) const {
    return row.parameter != kGapColour || Value(kFillGaps).number != 0;
}

void CWeaveDlg::OnParametersShown() { EnableGapColour(); }

void CWeaveDlg::EnableGapColour() {
    for (const int id : {kGapColourSwatch, kGapColourLabel}) {
        EnableControl(id, Value(kFillGaps).number != 0);
    }
}
