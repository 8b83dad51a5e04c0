#pragma once

#include <cstdint>

#include "host/core/HostApi.h"

inline constexpr int VK_SHIFT = 0x10;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_MENU = 0x12;  // the Alt key

// Negative while the modifier key is held, else 0. Without a window system no key ever is.
HOST_API std::int16_t GetKeyState(int key) noexcept;
