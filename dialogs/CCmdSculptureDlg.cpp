#include "dialogs/CCmdSculptureDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour,  Integer, Integer, Integer,
                                          String,  Integer, Integer, Integer, String,  Enumeration};
constexpr SControlRow kControls[] = {
    control::Number(3482, 0), control::Number(3484, 1),   control::Number(3481, 3),
    control::Number(3486, 4), control::Number(3485, 5),   control::Number(3483, 7),
    control::Number(3479, 8), control::Number(3480, 9),   control::Dial(3487, 1),
    control::Swatch(3488, 2), control::Resource(3489, 6),
};
const SDialogTable kTable{3478, kParameters, kControls, {}, false, {WM_ERASEBKGND}};

}  // namespace

CCmdSculptureDlg::CCmdSculptureDlg(ICommandExecutionContext* context,
                                   VCommandImplementation* command, CWnd* parent)
    : CResourceParameterDlg(
          kTable, {.kind = L"Pattern", .name = 6, .category = 10, .view = 11, .shownName = 3490},
          context, command, parent) {}
