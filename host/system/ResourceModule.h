#pragma once

#include <vector>

#include "host/core/CString.h"
#include "host/core/HostApi.h"

// A loaded module that holds resources: strings by id, pictures by kind and id. Null stands for
// none. Modules stay loaded until the process ends.
class CResourceModule;
using HMODULE = const CResourceModule*;

// Loads the resource module of a file, whose path may be written with backslashes; null when there
// is no such file or it holds no resources. Loading a file again gives the same module.
HOST_API HMODULE LoadLibraryW(const CString& path);
// The string `id` of a module; empty when the module is null or has none.
HOST_API CString LoadStringW(HMODULE module, int id);
// The file of a module, written with backslashes; of the null module, empty.
HOST_API CString GetModuleFileNameW(HMODULE module);
// Whether the module holds a resource of the kind ("PNG", "RT_BITMAP") under `id`.
HOST_API bool HasResource(HMODULE module, const CString& kind, int id);

// The resource module that the running code takes its strings from. Guarded by the language
// service's resource lock.
HOST_API HMODULE AfxGetResourceHandle();
HOST_API void AfxSetResourceHandle(HMODULE module);
// The module that holds the resource: the current one, or null.
HOST_API HMODULE AfxFindResourceHandle(int id, const CString& kind);

// The number of a registered window message; the same name always gives the same number.
HOST_API unsigned RegisterWindowMessageW(const wchar_t* name);
