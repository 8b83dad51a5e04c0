#include "dialogs/CCmdTilesDlg.h"

#include "module/CTolmResourceManager.h"

namespace {

constexpr int kLastShape = 2;

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Integer, Colour,  Integer,     Integer,
                                          Integer, Integer, Integer, Integer, Enumeration, Integer};
constexpr SControlRow kControls[] = {
    control::Number(2957, 0),
    control::Number(2961, 1),
    control::Number(2954, 2),
    control::Number(2956, 4),
    control::Number(2963, 5),
    control::Number(2962, 6),
    control::Number(2958, 7),
    control::Number(2959, 8),
    control::Number(2953, 9),
    control::Number(2955, 11),
    control::Dial(2960, 1),
    control::Swatch(2964, 3),
    control::List(2952, 10).With(EExchange::Control),
};
const SDialogTable kTable{2982, kParameters, kControls, {}, true};

}  // namespace

CCmdTilesDlg::CCmdTilesDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                           CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}

void CCmdTilesDlg::ExchangeControl(CDataExchange* exchange, const SControlRow& row) {
    DDX_Control(exchange, row.id, shapes_);
}

// The list shows the shapes the other way round: the last one, which is the default, first.
void CCmdTilesDlg::SetUpList(const SControlRow& /*row*/) {
    const CTolmResourceManager resources(L"CmdTexture");
    shapes_.ResetContent();
    for (const int name : {2984, 2983, 2982}) {
        const int entry = shapes_.AddString(LoadCurrentString(name));
        shapes_.SetItemData(entry, entry);
    }
}

void CCmdTilesDlg::ShowList(const SControlRow& row) {
    shapes_.SetCurSel(kLastShape - Value(row.parameter).number);
}

void CCmdTilesDlg::OnListChosen(const SControlRow& row) {
    const auto chosen = static_cast<std::int32_t>(shapes_.GetItemData(shapes_.GetCurSel()));
    Value(row.parameter).number = kLastShape - chosen;
    StoreAndPreview();
}
