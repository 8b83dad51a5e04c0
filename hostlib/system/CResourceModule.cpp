#include "hostlib/system/CResourceModule.h"

#include <map>
#include <mutex>
#include <nlohmann/json.hpp>

#include "hostlib/language/Texts.h"
#include "hostlib/system/ConfigFolders.h"
#include "hostlib/system/StrictJson.h"

namespace {

using json = nlohmann::ordered_json;

constexpr std::uintmax_t kLargest = 16 << 20;

constexpr int kFormat = 1;  // of the files that languages/compiler writes

// The entries of one kind, whose keys are ids.
template <class Function>
void ForEachId(const json& root, const char* kind, Function&& function) {
    const auto entries = root.find(kind);
    if (entries == root.end() || !entries->is_object()) return;
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
    const auto fail = [&](const std::string& what) -> std::runtime_error {
        return std::runtime_error(file.string() + ": " + what);
    };
    std::error_code none;
    if (!std::filesystem::is_regular_file(file, none))
        throw fail(Tr("the language file cannot be read"));
    json root;
    try {
        root = ReadStrictJson(file, kLargest);
    } catch (const std::runtime_error&) {
        throw fail(Tr("the language file is damaged"));
    }
    try {
        if (const json& format = root.at("format"); format != kFormat) {
            throw fail(Tr("the language file is of format {}, not {}", format.dump(), kFormat));
        }
        const std::string language = root.at("language"), folder = file.parent_path().filename();
        if (language != folder) {
            throw fail(Tr("the language file is in {}, not in {}", language, folder));
        }
        if (!root.at("strings").is_object()) throw fail(Tr("the language file has no texts"));
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
    } catch (const std::logic_error&) {  // an id that is no number
    } catch (const json::exception&) {   // of another shape
    }
    throw fail(Tr("the language file is damaged"));
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
    try {
        if (!module) module = CResourceModule::Read(file);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
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
