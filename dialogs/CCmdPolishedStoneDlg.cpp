#include "dialogs/CCmdPolishedStoneDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::Number(2203, 0), control::Number(2202, 1), control::Number(2204, 3),
    control::Number(2205, 4), control::Dial(2206, 0),   control::Swatch(2207, 2),
};
const SDialogTable kTable{2218, kParameters, kControls};

}  // namespace

CCmdPolishedStoneDlg::CCmdPolishedStoneDlg(ICommandExecutionContext* context,
                                           VCommandImplementation* command, CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
