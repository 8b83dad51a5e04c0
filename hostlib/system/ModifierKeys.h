#pragma once

#include "host/core/HostApi.h"

struct SModifierKeys {
    bool shift = false;
    bool control = false;
    bool alt = false;
};

// Tells which modifier keys are held from now on; the toolkit that sees the keyboard calls it.
HOST_API void SetModifierKeys(const SModifierKeys& held) noexcept;
