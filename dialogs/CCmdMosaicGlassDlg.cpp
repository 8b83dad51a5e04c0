#include "dialogs/CCmdMosaicGlassDlg.h"

namespace CmdMosaicGlass {
namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Integer, Boolean,
                                          Integer, Integer, Integer, Colour};
constexpr SControlRow kControls[] = {
    control::Number(952, 6, ETip::Real),
    control::Number(953, 5, ETip::Real),
    control::Number(954, 4, ETip::Real),
    control::Number(955, 2),
    control::Number(956, 1),
    control::Number(957, 0),
    control::Check(958, 3, ETip::Boolean).With(EExchange::Check),
    control::Swatch(960, 7, ETip::Colour),
};
const SDialogTable kTable{971, kParameters, kControls, {}, false, {WM_HSCROLL}};

}  // namespace

CCmdMosaicGlassDlg::CCmdMosaicGlassDlg(ICommandExecutionContext* context,
                                       VCommandImplementation* command, CWnd* parent)
    : CMosaicDlg(kTable, {.symmetric = 3, .rows = 0, .columns = 1}, context, command, parent) {}

}  // namespace CmdMosaicGlass
