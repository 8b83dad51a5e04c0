#include "dialogs/CBlindsDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Boolean, Boolean, Colour};
constexpr SControlRow kControls[] = {
    control::CanvasNumber(1011, 0, 205, 2),
    control::Number(1094, 1).With(EExchange::Text),
    control::Check(1213, 3).With(EExchange::Control),
    control::Check(1212, 2).With(EExchange::Control),
    control::Swatch(1571, 4),
};
const SDialogTable kTable{207, kParameters, kControls, {.first = 100, .second = 3, .third = 500}};

}  // namespace

CBlindsDlg::CBlindsDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                       CWnd* parent)
    : CParameterDlg(kTable, context, command, parent) {}
