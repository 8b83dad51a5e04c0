#include "host/language/CConnectLanguage.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>

#include "hostlib/language/CSelectedLanguage.h"
#include "hostlib/language/Languages.h"
#include "hostlib/system/CResourceModule.h"
#include "hostlib/system/ConfigFolders.h"

namespace {

struct SService {
    std::recursive_mutex resource_lock;
    std::mutex mutex;  // guards what follows
    CString path, alternative_path;
    std::map<std::wstring, CConnectLanguage::LinkRoutine> routines;
    std::map<std::wstring, HMODULE> resources;  // by the name of the module of code
};
SService& Service() {
    static SService service;
    return service;
}

std::string UpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

}  // namespace

void CConnectLanguage::GetResLock() { Service().resource_lock.lock(); }
void CConnectLanguage::FreeResLock() { Service().resource_lock.unlock(); }

HMODULE CConnectLanguage::GetModuleResourceHandle(const CString& name) {
    const std::lock_guard lock(Service().mutex);
    const auto found = Service().resources.find(name.Text());
    return found == Service().resources.end() ? nullptr : found->second;
}

CString CConnectLanguage::GetPath() {
    const std::lock_guard lock(Service().mutex);
    return Service().path;
}

CString CConnectLanguage::GetAltPath() {
    const std::lock_guard lock(Service().mutex);
    return Service().alternative_path;
}

// Every language file lies in a language folder here: there is no other place to look.
HMODULE CConnectLanguage::FindRequestedModule(const CString& /*file_name*/) { return nullptr; }

void CConnectLanguage::StoreCB(const CString& key, LinkRoutine routine) {
    const std::lock_guard lock(Service().mutex);
    if (routine) {
        Service().routines[key.Text()] = routine;
    } else {
        Service().routines.erase(key.Text());
    }
}

void CConnectLanguage::AddModuleInfo(const CString& file, const CString& /*second*/,
                                     const CString& /*resource_file*/, const CString& /*fourth*/,
                                     int /*kind*/, HMODULE resources, bool /*flag*/) {
    const std::wstring name = FromUtf8(FromHostPath(file).stem().string()).Text();
    const std::lock_guard lock(Service().mutex);
    Service().resources[name] = resources;
}

namespace languages {

std::vector<std::string> Available(const std::filesystem::path& data) {
    std::vector<std::string> codes;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(data / "Languages", ignored)) {
        if (entry.is_directory()) codes.push_back(entry.path().filename().string());
    }
    std::sort(codes.begin(), codes.end(), [](const std::string& a, const std::string& b) {
        return std::pair(a != "EN", a) < std::pair(b != "EN", b);
    });
    return codes;
}

std::string Preferred(const std::vector<std::string>& available) {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (!value || !*value) continue;
        const std::string code = UpperCase(std::string(value).substr(0, 2));
        const bool known = std::find(available.begin(), available.end(), code) != available.end();
        return known ? code : "EN";
    }
    return "EN";
}

void Select(const std::filesystem::path& data, const std::string& code) {
    std::map<std::wstring, CConnectLanguage::LinkRoutine> routines;
    {
        const std::lock_guard lock(Service().mutex);
        Service().path = ToHostPath(data / "Languages" / code);
        Service().alternative_path = ToHostPath(data / "Languages" / "EN");
        routines = Service().routines;
    }
    const std::lock_guard resources(Service().resource_lock);
    for (const auto& [key, routine] : routines) routine(FromUtf8(code));
}

std::string Problem(const std::filesystem::path& file) {
    try {
        CResourceModule::Read(file);
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

}  // namespace languages

struct CSelectedLanguage::SBefore {
    CString path, alternative_path;
    std::map<std::wstring, HMODULE> resources;
    HMODULE current = nullptr;
};

CSelectedLanguage::CSelectedLanguage(const std::filesystem::path& data, const std::string& code)
    : before_(std::make_unique<SBefore>()) {
    const std::lock_guard resources(Service().resource_lock);
    {
        const std::lock_guard lock(Service().mutex);
        *before_ = {Service().path, Service().alternative_path, Service().resources,
                    AfxGetResourceHandle()};
    }
    languages::Select(data, code);
}

CSelectedLanguage::~CSelectedLanguage() {
    const std::lock_guard resources(Service().resource_lock);
    AfxSetResourceHandle(before_->current);
    const std::lock_guard lock(Service().mutex);
    Service().path = before_->path;
    Service().alternative_path = before_->alternative_path;
    Service().resources = before_->resources;
}
