#include "FuzzInput.h"
#include "host/system/Registry.h"

// Any bytes as the user's registry file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool is_ready = [] {
        setenv("XDG_CONFIG_HOME", fuzz::Folder().c_str(), 1);
        return std::filesystem::create_directories(fuzz::Folder() / "cmdtexture");
    }();
    if (!is_ready) std::abort();
    std::ofstream(fuzz::Folder() / "cmdtexture" / "registry.ini", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    for (const wchar_t* key : {L"Software\\Quarn\\Brushwerk\\X15\\Installer", L"a", L""}) {
        for (const wchar_t* value : {L"RCPath", L"b", L""}) {
            ReadRegistryText(ERegistryHive::CurrentUser, key, value);
            ReadRegistryNumber(ERegistryHive::CurrentUser, key, value);
        }
    }
    return 0;
}
