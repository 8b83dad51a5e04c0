#include "hostlib/system/ConfigFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/core/CString.h"

namespace folders {
namespace {

// An environment variable that names a folder; relative ones are ignored, as the rules say.
std::filesystem::path FromEnvironment(const char* variable,
                                      const std::filesystem::path& otherwise) {
    const char* value = std::getenv(variable);
    return value && value[0] == '/' ? std::filesystem::path(value) : otherwise;
}

// Without HOME it is the account's; the root of the file system is nobody's.
std::filesystem::path Home() {
    std::filesystem::path home = FromEnvironment("HOME", "");
    std::vector<char> text(1 << 14);
    passwd account = {};
    passwd* found = nullptr;
    if (home.empty() && getpwuid_r(geteuid(), &account, text.data(), text.size(), &found) == 0 &&
        found) {
        home = account.pw_dir;
    }
    return home.is_absolute() && home != home.root_path() ? home : std::filesystem::path();
}

std::filesystem::path Below(const std::filesystem::path& folder, const char* name) {
    return folder.empty() ? folder : folder / name;
}

}  // namespace

std::filesystem::path UserConfig() {
    return Below(FromEnvironment("XDG_CONFIG_HOME", Below(Home(), ".config")), "cmdtexture");
}

std::filesystem::path SystemConfig() {
    const std::string all = FromEnvironment("XDG_CONFIG_DIRS", "/etc/xdg").string();
    return std::filesystem::path(all.substr(0, all.find(':'))) / "cmdtexture";
}

std::filesystem::path UserData() {
    return FromEnvironment("XDG_DATA_HOME", Home() / ".local" / "share") / "cmdtexture";
}

std::filesystem::path UserCache() {
    return Below(FromEnvironment("XDG_CACHE_HOME", Below(Home(), ".cache")), "cmdtexture");
}

std::filesystem::path UserRuntime() {
    const std::filesystem::path fallback = "/tmp/cmdtexture-" + std::to_string(geteuid());
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime && runtime[0] == '/' ? std::filesystem::path(runtime) / "cmdtexture" : fallback;
}

}  // namespace folders

CString ToHostPath(const std::filesystem::path& path) {
    std::wstring text = FromUtf8(path.string()).Text();
    std::replace(text.begin(), text.end(), L'/', L'\\');
    return text;
}

std::filesystem::path FromHostPath(const CString& path) {
    std::string text = ToUtf8(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}
