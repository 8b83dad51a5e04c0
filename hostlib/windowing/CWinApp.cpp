#include "host/windowing/CWinApp.h"

#include <atomic>

namespace {
std::atomic<CWinApp*> g_app = nullptr;
}

CWinApp::CWinApp() {
    CWinApp* none = nullptr;
    g_app.compare_exchange_strong(none, this);
}

CWinApp::~CWinApp() {
    CWinApp* self = this;
    g_app.compare_exchange_strong(self, nullptr);
}

bool CWinApp::InitInstance() { return true; }
int CWinApp::ExitInstance() { return 0; }
void CWinApp::OnHelp() {}

CString CWinApp::AppName() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return name_;
}

void CWinApp::SetAppName(CString name) {
    const std::lock_guard<std::mutex> lock(mutex_);
    name_ = std::move(name);
}

CWinApp* AfxGetApp() { return g_app; }
