#pragma once

#include <cstdint>
#include <optional>

#include "host/core/CString.h"
#include "host/core/HostApi.h"

enum class ERegistryHive { CurrentUser, LocalMachine };

// Registry values. A key is written with backslashes; letter case does not matter. Nothing is
// answered when the key or the value is missing, or is not a number where one is wanted.
HOST_API std::optional<CString> ReadRegistryText(ERegistryHive hive, const CString& key,
                                                 const CString& value);
HOST_API std::optional<std::uint32_t> ReadRegistryNumber(ERegistryHive hive, const CString& key,
                                                         const CString& value);
