#include "host/system/KeyState.h"

#include <atomic>

#include "hostlib/system/ModifierKeys.h"

namespace {

constexpr unsigned kShift = 1, kControl = 2, kAlt = 4;
std::atomic<unsigned> g_held = 0;

unsigned BitOf(int key) noexcept {
    return key == VK_SHIFT ? kShift : key == VK_CONTROL ? kControl : key == VK_MENU ? kAlt : 0;
}

}  // namespace

void SetModifierKeys(const SModifierKeys& held) noexcept {
    g_held = (held.shift ? kShift : 0) | (held.control ? kControl : 0) | (held.alt ? kAlt : 0);
}

std::int16_t GetKeyState(int key) noexcept {
    return (g_held & BitOf(key)) != 0 ? std::int16_t{-32768} : std::int16_t{0};
}
