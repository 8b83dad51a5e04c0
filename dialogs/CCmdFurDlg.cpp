#include "dialogs/CCmdFurDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::Number(1952, 0),
    control::Number(1953, 1),
    control::Number(1954, 2),
    control::Number(1955, 3),
};
const SDialogTable kTable{1966, kParameters, kControls};

}  // namespace

CCmdFurDlg::CCmdFurDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                       CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
