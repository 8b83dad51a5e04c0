#pragma once

#include <mutex>

#include "host/core/CString.h"
#include "host/core/HostApi.h"

// The application object of a module; there is one a module, a global.
class HOST_API CWinApp {
  public:
    CWinApp();
    virtual ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    // Called when the module is loaded and before it is unloaded.
    virtual bool InitInstance();
    virtual int ExitInstance();
    // Called for the command ID_HELP, the one entry of a module's message map.
    virtual void OnHelp();

    // The name under which windows and messages present the application. Any thread may ask or
    // tell: every exporter that is made tells it.
    CString AppName() const;
    void SetAppName(CString name);

  private:
    mutable std::mutex mutex_;
    CString name_;
};

inline constexpr int ID_HELP = 57670;

// The running application object of the process; null when there is none.
HOST_API CWinApp* AfxGetApp();
