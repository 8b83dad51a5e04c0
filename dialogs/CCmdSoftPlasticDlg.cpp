#include "dialogs/CCmdSoftPlasticDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour, Integer, Integer};
constexpr SControlRow kControls[] = {
    control::RangeNumber(2105, 0, 1208),
    control::RangeNumber(2100, 1, 1210),
    control::RangeNumber(2102, 3, 1214),
    control::RangeNumber(2101, 4, 1216),
    control::Dial(2140, 0),
    control::Swatch(2120, 2),
};
const SDialogTable kTable{1218, kParameters, kControls};

}  // namespace

CCmdSoftPlasticDlg::CCmdSoftPlasticDlg(ICommandExecutionContext* context,
                                       VCommandImplementation* command, CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
