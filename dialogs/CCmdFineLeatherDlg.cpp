#include "dialogs/CCmdFineLeatherDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour, Integer, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::Number(1705, 0), control::Number(1704, 1), control::Number(1702, 3),
    control::Number(1703, 4), control::Number(1706, 5), control::Dial(1707, 0),
    control::Swatch(1709, 2),
};
const SDialogTable kTable{1720, kParameters, kControls};

}  // namespace

CCmdFineLeatherDlg::CCmdFineLeatherDlg(ICommandExecutionContext* context,
                                       VCommandImplementation* command, CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
