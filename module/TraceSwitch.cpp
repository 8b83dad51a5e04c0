#include "module/TraceSwitch.h"

#include "host/system/KeyState.h"
#include "host/system/Registry.h"

namespace {

constexpr const wchar_t* kEnableEvent = L"BRW_OUTPUT_DEBUG_ENABLE";
constexpr const wchar_t* kCheckpointEvent = L"HOTKEY_BRW2023_CHECKPOINT";
constexpr const wchar_t* kCtrlAltEvent = L"HOTKEY_BRW2023_CTRL_ALT";
constexpr const wchar_t* kCtrlShiftEvent = L"HOTKEY_BRW2023_CTRL_SHIFT";
constexpr const wchar_t* kShiftEvent = L"HOTKEY_BRW2023_SHIFT";

bool IsHeld(int key) { return GetKeyState(key) < 0; }

// The event that stands for the modifier keys held now; null for none.
const wchar_t* ModifierEventName() {
    if (IsHeld(VK_CONTROL) && IsHeld(VK_MENU)) return kCtrlAltEvent;
    if (IsHeld(VK_SHIFT) && IsHeld(VK_CONTROL)) return kCtrlShiftEvent;
    return IsHeld(VK_SHIFT) ? kShiftEvent : nullptr;
}

bool RegistryEnables() {
    return ReadRegistryNumber(ERegistryHive::CurrentUser, L"Software\\Quarn\\Brushwerk\\X15\\Debug",
                              L"Enable")
               .value_or(0) != 0;
}

}  // namespace

TraceSwitch::TraceSwitch() {
    if (!OpenEventW(kCheckpointEvent)) RecordModifierKeys();
    if (const CEventHandle agreed = OpenEventW(kEnableEvent)) {
        enabled_ = agreed.IsSignalled();
    } else {
        DecideForTheLogon();
    }
}

void TraceSwitch::RecordModifierKeys() {
    if (const wchar_t* name = ModifierEventName()) modifier_event_ = CreateEventW(name).event;
    SCreatedEvent checkpoint = CreateEventW(kCheckpointEvent);
    if (checkpoint.error != ERROR_ALREADY_EXISTS) checkpoint_event_ = std::move(checkpoint.event);
}

void TraceSwitch::DecideForTheLogon() {
    SCreatedEvent agreed = CreateEventW(kEnableEvent);
    if (!agreed.event) return;
    enabled_ = RegistryEnables();
    if (enabled_) agreed.event.Set();
    if (agreed.error != ERROR_ALREADY_EXISTS) owned_enable_event_ = std::move(agreed.event);
}

const TraceSwitch& TraceSwitch::OfThisModule() {
    static const TraceSwitch the_switch;
    return the_switch;
}
