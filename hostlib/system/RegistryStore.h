#pragma once

#include "host/system/Registry.h"

// Gives a value that holds for this process when no registry file names another: what an
// installation would have written. The files are `registry.ini` in the user's configuration folder
// (current user) and in the system's (local machine); sections are keys.
HOST_API void SetRegistryDefault(ERegistryHive hive, const CString& key, const CString& value,
                                 const CString& data);
