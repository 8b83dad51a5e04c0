#pragma once

#include "host/core/HostApi.h"

// Hands a text to the debugger output: the system log or, when the environment variable
// CMDTEXTURE_DEBUG_OUTPUT names a file that can be written, the end of that file. Texts arrive
// whole, however many threads and processes write; each ends its line.
HOST_API void OutputDebugStringW(const wchar_t* text);
