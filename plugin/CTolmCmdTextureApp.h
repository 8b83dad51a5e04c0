#pragma once

#include "host/windowing/CWinApp.h"

// The module's application object. Starting it registers the routine that links the module's
// language resources.
class CTolmCmdTextureApp : public CWinApp {
  public:
    bool InitInstance() override;
    int ExitInstance() override;
};

// This module's application object, which lives as long as the module is loaded; the process may
// have others.
CTolmCmdTextureApp& ModuleApplication();
