#include "plugin/CTolmCmdTextureApp.h"

#include <dlfcn.h>

#include <algorithm>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/HostApi.h"
#include "host/language/CConnectLanguage.h"

namespace {

constexpr const wchar_t* kModuleKey = L"CmdTexture";
constexpr const wchar_t* kResourceFile = L"CmdTexturerc.dll";

// Registered when the module is loaded, as every module of the editor does; not used here.
constexpr const wchar_t* kWindowMessages[] = {
    L"UWM_THREAD_CACHELOADING",
    L"UWM_THREAD_CACHEVALIDATE",
    L"UWM_THREAD_CACHEWRITE",
    L"UWM_THREAD_LOADAPPSERVICES",
    L"UWM_THREAD_LIBRARYDISCOVERY",
    L"UWM_THREAD_LOADCOMMANDS",
    L"UWM_EXECUTE_THREAD_PROCESSING",
    L"UWM_EXECUTE_CACHELOADCOMPLETE",
    L"UWM_EXECUTE_CACHEVALIDATIONCOMPLETE",
    L"UWM_EXECUTE_CACHEWRITECOMPLETE",
    L"UWM_BUILD_TASKPANEL",
    L"UWM_UPDATE_TASKPANEL",
    L"UWM_EXECUTE_LIBRARYDISCOVERYCOMPLETE",
    L"UWM_EXECUTE_LIBRARYDISCOVERY",
    L"UWM_EXECUTE_CMDLOADCOMPLETE",
    L"UWM_STARTSECONDARY_INITIALIZATION",
    L"UWM_STARTTHIRDLEVEL_INITIALIZATION",
    L"UWM_BRING_APP_TO_TOP",
    L"UWM_OPEN_PHOTODOWNLOAD_FOLDER",
    L"UWM_INVOKE_COMMANDLINE",
    L"UWM_REFRESH_ORGANIZER_TREE",
};

// This module's own file, written with backslashes.
CString OwnFileName() {
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&OwnFileName), &info);
    std::wstring path = FromUtf8(info.dli_fname ? info.dli_fname : "").Text();
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

// Finds this module's language resources and reports them to the language service: the chosen
// language's folder first, then the alternative one, then whatever the service finds.
CErrorAutoThrow LinkLanguage() {
    const CString folder = CConnectLanguage::GetPath();
    if (folder.IsEmpty()) return {};
    CString tried = folder + L"\\" + kResourceFile;
    HMODULE resources = LoadLibraryW(tried);
    if (!resources) {
        tried = CConnectLanguage::GetAltPath() + L"\\" + kResourceFile;
        resources = LoadLibraryW(tried);
    }
    if (!resources) resources = CConnectLanguage::FindRequestedModule(kResourceFile);
    if (!resources) {
        const CString current = GetModuleFileNameW(AfxGetResourceHandle());
        CConnectLanguage::AddModuleInfo(current, L"", L"", L"", 1, nullptr, true);
        return {};
    }
    AfxSetResourceHandle(resources);
    CConnectLanguage::AddModuleInfo(OwnFileName(), L"", tried, L"", 1, resources, true);
    return {};
}

// The module's application object lives as long as the module is loaded.
struct SModuleLife {
    CTolmCmdTextureApp app;
    SModuleLife() {
        for (const wchar_t* name : kWindowMessages) RegisterWindowMessageW(name);
        app.InitInstance();
    }
    ~SModuleLife() { app.ExitInstance(); }
};
SModuleLife g_life;

}  // namespace

CTolmCmdTextureApp& ModuleApplication() { return g_life.app; }

// NOLINTNEXTLINE(performance-unnecessary-value-param): the framework's signature
extern "C" HOST_API void LinkStandard(CString /*language*/) {
    CatchErrors([] { return LinkLanguage(); }).Ignore();
}

bool CTolmCmdTextureApp::InitInstance() {
    CConnectLanguage::StoreCB(kModuleKey, &LinkStandard);
    return CWinApp::InitInstance();
}

// The routine goes with the module: the service must not call into code that is unloaded.
int CTolmCmdTextureApp::ExitInstance() {
    CConnectLanguage::StoreCB(kModuleKey, nullptr);
    return CWinApp::ExitInstance();
}
