#include "dialogs/CCmdMosaicAntiqueDlg.h"

namespace CmdMosaicAntique {
namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Boolean, Integer,
                                          Integer, Integer, Colour};
constexpr SControlRow kControls[] = {
    control::Number(702, 5, ETip::Real),
    control::Number(703, 0),
    control::Number(704, 4),
    control::Number(705, 3),
    control::Number(707, 1, ETip::Real),
    control::Check(706, 2, ETip::Boolean).With(EExchange::Check),
    control::Swatch(708, 6, ETip::Colour),
};
const SDialogTable kTable{719, kParameters, kControls, {}, false, {WM_HSCROLL}};

}  // namespace

CCmdMosaicAntiqueDlg::CCmdMosaicAntiqueDlg(ICommandExecutionContext* context,
                                           VCommandImplementation* command, CWnd* parent)
    : CMosaicDlg(kTable, {.symmetric = 2, .rows = 3, .columns = 4}, context, command, parent) {}

}  // namespace CmdMosaicAntique
