#include "dialogs/CCmdStrawWallDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour, Integer,
                                          Integer, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::RangeNumber(2105, 0, 1458),
    control::RangeNumber(2100, 1, 1460),
    control::RangeNumber(2101, 3, 1464),
    control::RangeNumber(2102, 4, 1466),
    control::RangeNumber(2104, 5, 1468),
    control::RangeNumber(2103, 6, 1470),
    control::Dial(2140, 0),
    control::Swatch(2120, 2),
};
const SDialogTable kTable{1472, kParameters, kControls};

}  // namespace

CCmdStrawWallDlg::CCmdStrawWallDlg(ICommandExecutionContext* context,
                                   VCommandImplementation* command, CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}

void CCmdStrawWallDlg::DoDataExchange(CDataExchange* /*exchange*/) {}
