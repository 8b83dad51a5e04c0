#include "hostlib/system/CResourceModule.h"

#include <fstream>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>

#include "hostlib/system/ConfigFolders.h"

namespace {

using nlohmann::json;

// The entries of one kind, whose keys are ids.
template <class Function>
void ForEachId(const json& root, const char* kind, Function&& function) {
    const auto entries = root.find(kind);
    if (entries == root.end()) return;
    for (const auto& [key, value] : entries->items()) function(std::stoi(key), value);
}

struct SLoadedModules {
    std::mutex mutex;
    std::map<std::filesystem::path, std::unique_ptr<CResourceModule>> by_file;
    HMODULE current = nullptr;
};
SLoadedModules& Loaded() {
    static SLoadedModules modules;
    return modules;
}

}  // namespace

std::unique_ptr<CResourceModule> CResourceModule::Read(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return nullptr;
    try {
        const json root = json::parse(in);
        auto module = std::make_unique<CResourceModule>();
        module->file_ = file;
        ForEachId(root, "strings", [&](int id, const json& text) {
            module->strings_[id] = FromUtf8(text.get<std::string>());
        });
        ForEachId(root, "pictures", [&](int id, const json& data) {
            module->pictures_[id] = data.get<std::string>();
        });
        ForEachId(root, "dialogs",
                  [&](int id, const json& data) { module->dialogs_[id] = data.dump(); });
        return module;
    } catch (const std::exception&) {
        return nullptr;  // not JSON, or of another shape
    }
}

CString CResourceModule::String(int id) const {
    const auto found = strings_.find(id);
    return found == strings_.end() ? CString() : found->second;
}

std::string CResourceModule::DialogTemplate(int id) const {
    const auto found = dialogs_.find(id);
    return found == dialogs_.end() ? std::string() : found->second;
}

HMODULE LoadLibraryW(const CString& path) {
    const std::filesystem::path file = FromHostPath(path);
    const std::lock_guard lock(Loaded().mutex);
    auto& module = Loaded().by_file[file];
    if (!module) module = CResourceModule::Read(file);
    return module.get();
}

CString LoadStringW(HMODULE module, int id) { return module ? module->String(id) : CString(); }

CString GetModuleFileNameW(HMODULE module) {
    return module ? ToHostPath(module->File()) : CString();
}

bool HasResource(HMODULE module, const CString& kind, int id) {
    return module && kind == L"PNG" && module->HasPicture(id);
}

HMODULE AfxGetResourceHandle() {
    const std::lock_guard lock(Loaded().mutex);
    return Loaded().current;
}

void AfxSetResourceHandle(HMODULE module) {
    const std::lock_guard lock(Loaded().mutex);
    Loaded().current = module;
}

HMODULE AfxFindResourceHandle(int id, const CString& kind) {
    const HMODULE current = AfxGetResourceHandle();
    return HasResource(current, kind, id) ? current : nullptr;
}

unsigned RegisterWindowMessageW(const wchar_t* name) {
    static std::mutex mutex;
    static std::map<std::wstring, unsigned> numbers;
    const std::lock_guard lock(mutex);
    constexpr unsigned kFirst = 0xC000;
    return numbers.try_emplace(name, kFirst + static_cast<unsigned>(numbers.size())).first->second;
}
