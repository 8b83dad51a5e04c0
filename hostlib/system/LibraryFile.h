#pragma once

#include <filesystem>

#include "host/core/HostApi.h"

// The file that the host's library, this one, was loaded from; empty when that cannot be told.
HOST_API std::filesystem::path LibraryFile();
