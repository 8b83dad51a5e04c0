#include "dialogs/CCmdTextureDlg.h"

namespace {

using enum EParameterType;
constexpr EParameterType kParameters[] = {Integer, Integer, Colour,  Integer, Integer, Integer,
                                          Integer, Integer, Integer, String,  String,  Enumeration};
constexpr SControlRow kControls[] = {
    control::Number(3205, 0), control::Number(3207, 1),   control::Number(3204, 3),
    control::Number(3209, 4), control::Number(3208, 5),   control::Number(3206, 6),
    control::Number(3202, 7), control::Number(3203, 8),   control::Dial(3210, 1),
    control::Swatch(3211, 2), control::Resource(3212, 9),
};
const SDialogTable kTable{3228, kParameters, kControls, {}, false, {WM_ERASEBKGND}};

}  // namespace

CCmdTextureDlg::CCmdTextureDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                               CWnd* parent)
    : CResourceParameterDlg(kTable, {.kind = L"Texture", .name = 9, .category = 10, .view = 11},
                            context, command, parent) {}
