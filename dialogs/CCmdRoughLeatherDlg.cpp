#include "dialogs/CCmdRoughLeatherDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Integer, Colour,
                                          Colour,  Integer, Integer};
constexpr SControlRow kControls[] = {
    control::Number(2456, 0), control::Number(2455, 1), control::Number(2453, 2),
    control::Number(2452, 5), control::Number(2454, 6), control::Dial(2457, 0),
    control::Swatch(2459, 3), control::Swatch(2458, 4),
};
const SDialogTable kTable{2472, kParameters, kControls};

}  // namespace

CCmdRoughLeatherDlg::CCmdRoughLeatherDlg(ICommandExecutionContext* context,
                                         VCommandImplementation* command, CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
