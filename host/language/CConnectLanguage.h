#pragma once

#include "host/core/CString.h"
#include "host/core/HostApi.h"
#include "host/system/ResourceModule.h"

// The language service: which language the texts are in, where its files lie, and which resource
// module belongs to which module of code.
class HOST_API CConnectLanguage {
  public:
    // The resource lock serialises every switch of the current resource module. A thread may take
    // it several times.
    static void GetResLock();
    static void FreeResLock();

    // The language resources of the module with this name ("CmdTexture"); null when it has none.
    static HMODULE GetModuleResourceHandle(const CString& name);

    // The folder of the chosen language and the one to try next, written with backslashes and
    // without one at the end; may be empty.
    static CString GetPath();
    static CString GetAltPath();
    // A last resort for a language file that neither folder has; null when it is nowhere.
    static HMODULE FindRequestedModule(const CString& file_name);

    // A link routine finds the language resources of its module and reports them with
    // AddModuleInfo. It is called when the language is set, with the language's code.
    using LinkRoutine = void (*)(CString);
    static void StoreCB(const CString& key, LinkRoutine routine);
    static void AddModuleInfo(const CString& file, const CString& second,
                              const CString& resource_file, const CString& fourth, int kind,
                              HMODULE resources, bool flag);
};
