#pragma once

#include <filesystem>

#include "host/core/HostApi.h"

// Where the program keeps things, by the desktop's base-directory rules; folders may not exist yet.
// UserConfig and UserCache are empty for a user without a home folder: nothing is kept then.
namespace folders {
HOST_API std::filesystem::path UserConfig();    // $XDG_CONFIG_HOME/cmdtexture
HOST_API std::filesystem::path SystemConfig();  // the first of $XDG_CONFIG_DIRS, /cmdtexture
HOST_API std::filesystem::path UserData();      // $XDG_DATA_HOME/cmdtexture
HOST_API std::filesystem::path UserCache();     // $XDG_CACHE_HOME/cmdtexture
HOST_API std::filesystem::path UserRuntime();   // $XDG_RUNTIME_DIR/cmdtexture, or below /tmp
}  // namespace folders

// The interface between module and host writes paths with backslashes.
class CString;
HOST_API CString ToHostPath(const std::filesystem::path& path);
HOST_API std::filesystem::path FromHostPath(const CString& path);
