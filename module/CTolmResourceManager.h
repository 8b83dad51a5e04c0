#pragma once

#include "host/core/CString.h"
#include "host/system/ResourceModule.h"

// Makes the resources of a module current for a scope and holds the language service's resource
// lock for its length. Every load of a display text runs inside one.
class CTolmResourceManager {
  public:
    explicit CTolmResourceManager(const CString& module_name);
    ~CTolmResourceManager();
    CTolmResourceManager(const CTolmResourceManager&) = delete;
    CTolmResourceManager& operator=(const CTolmResourceManager&) = delete;

  private:
    HMODULE previous_ = nullptr;   // null when no application object was running
    HMODULE installed_ = nullptr;  // null when the language service knows no such module
};

// The string of the current resource module; empty when there is no module or no such id.
CString LoadCurrentString(int id);
