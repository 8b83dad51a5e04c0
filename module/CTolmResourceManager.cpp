#include "module/CTolmResourceManager.h"

#include "host/language/CConnectLanguage.h"
#include "host/windowing/CWinApp.h"

CTolmResourceManager::CTolmResourceManager(const CString& module_name) {
    CConnectLanguage::GetResLock();
    if (AfxGetApp()) previous_ = AfxGetResourceHandle();
    installed_ = CConnectLanguage::GetModuleResourceHandle(module_name);
    if (installed_) AfxSetResourceHandle(installed_);
}

// The resources are put back before the lock is given up, so that no other switch comes between.
CTolmResourceManager::~CTolmResourceManager() {
    if (previous_) AfxSetResourceHandle(previous_);
    CConnectLanguage::FreeResLock();
}

CString LoadCurrentString(int id) { return LoadStringW(AfxGetResourceHandle(), id); }
