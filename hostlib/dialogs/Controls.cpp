#include "host/dialogs/CMaterialWnd.h"
#include "host/dialogs/CNNumEdit.h"
#include "host/dialogs/CRotationCtrl.h"
#include "hostlib/windowing/SDialogState.h"

CNNumEdit::CNNumEdit() = default;
CNNumEdit::~CNNumEdit() = default;

bool CNNumEdit::SetUp(CDialog& dialog, int id, std::int32_t minimum, std::int32_t maximum,
                      std::int32_t value, const SNumEditSetUp& /*arguments*/) {
    if (!Attach(dialog, id)) return false;
    State()->minimum = minimum;
    State()->maximum = maximum;
    SetValue(value);
    StateChanged();
    return true;
}

std::int32_t CNNumEdit::GetValue() const { return State() ? State()->value : 0; }

// What its user has typed for this very value stays as it is.
void CNNumEdit::SetValue(std::int32_t value) {
    SControlState* state = State();
    if (!state) return;
    const bool wrong = value < state->minimum || value > state->maximum;
    const bool fits = !state->text.IsEmpty() && !state->wrong && !wrong;
    const bool shown = state->value == value && (state->typing || fits);
    if (shown) return;
    state->value = value;
    state->text = std::to_wstring(value);
    state->wrong = wrong;
    StateChanged();
}

void CNNumEdit::GetRange(std::int32_t& minimum, std::int32_t& maximum) const {
    minimum = State() ? State()->minimum : 0;
    maximum = State() ? State()->maximum : 0;
}

CMaterialWnd::CMaterialWnd() = default;
CMaterialWnd::~CMaterialWnd() = default;

bool CMaterialWnd::Create(CDialog& dialog, int id, ICommandExecutionContext* /*services*/,
                          bool /*show*/, int /*colour_mode*/, const wchar_t* /*name*/,
                          bool /*allow_none*/) {
    return Attach(dialog, id);
}

COLORREF CMaterialWnd::GetSolidColor() const { return State() ? State()->colour : 0; }

void CMaterialWnd::SetSolidColor(COLORREF colour) {
    if (!State() || State()->colour == colour) return;
    State()->colour = colour;
    StateChanged();
}

CRotationCtrl::CRotationCtrl() = default;
CRotationCtrl::~CRotationCtrl() = default;

bool CRotationCtrl::Create(CDialog& dialog, int id) { return Attach(dialog, id); }

int CRotationCtrl::GetAngle() const { return State() ? State()->value : 0; }

void CRotationCtrl::SetAngle(int degrees) {
    if (!State() || State()->value == degrees) return;
    State()->value = degrees;
    StateChanged();
}
