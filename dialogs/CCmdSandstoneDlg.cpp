#include "dialogs/CCmdSandstoneDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::Number(2704, 0), control::Number(2702, 1), control::Number(2703, 3),
    control::Number(2705, 4), control::Dial(2706, 0),   control::Swatch(2707, 2),
};
const SDialogTable kTable{2718, kParameters, kControls, {}, true};

}  // namespace

CCmdSandstoneDlg::CCmdSandstoneDlg(ICommandExecutionContext* context,
                                   VCommandImplementation* command, CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
