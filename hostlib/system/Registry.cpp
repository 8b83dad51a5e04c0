#include <INIReader.h>

#include <cstdlib>
#include <map>
#include <mutex>

#include "hostlib/system/ConfigFolders.h"
#include "hostlib/system/RegistryStore.h"

namespace {

struct SDefaults {
    std::mutex mutex;
    std::map<std::wstring, CString> values;
};
SDefaults& Defaults() {
    static SDefaults defaults;
    return defaults;
}

std::wstring Address(ERegistryHive hive, const CString& key, const CString& value) {
    return (hive == ERegistryHive::CurrentUser ? L"user\n" : L"machine\n") + key.Text() + L"\n" +
           value.Text();
}

}  // namespace

void SetRegistryDefault(ERegistryHive hive, const CString& key, const CString& value,
                        const CString& data) {
    const std::lock_guard lock(Defaults().mutex);
    Defaults().values[Address(hive, key, value)] = data;
}

std::optional<CString> ReadRegistryText(ERegistryHive hive, const CString& key,
                                        const CString& value) {
    const std::filesystem::path folder =
        hive == ERegistryHive::CurrentUser ? folders::UserConfig() : folders::SystemConfig();
    if (!folder.empty()) {
        const INIReader file((folder / "registry.ini").string());
        const std::string section = ToUtf8(key);
        const std::string name = ToUtf8(value);
        if (file.HasValue(section, name)) return FromUtf8(file.Get(section, name, ""));
    }
    const std::lock_guard lock(Defaults().mutex);
    const auto found = Defaults().values.find(Address(hive, key, value));
    if (found == Defaults().values.end()) return std::nullopt;
    return found->second;
}

std::optional<std::uint32_t> ReadRegistryNumber(ERegistryHive hive, const CString& key,
                                                const CString& value) {
    const std::optional<CString> text = ReadRegistryText(hive, key, value);
    if (!text) return std::nullopt;
    const std::string digits = ToUtf8(*text);
    char* end = nullptr;
    const unsigned long number = std::strtoul(digits.c_str(), &end, 0);
    if (digits.empty() || *end != '\0') return std::nullopt;
    return static_cast<std::uint32_t>(number);
}
