#include "hostlib/system/ConfigFolders.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "host/core/CString.h"

namespace folders {
namespace {

// An environment variable that names a folder; relative ones are ignored, as the rules say.
std::filesystem::path FromEnvironment(const char* variable,
                                      const std::filesystem::path& otherwise) {
    const char* value = std::getenv(variable);
    return value && value[0] == '/' ? std::filesystem::path(value) : otherwise;
}

std::filesystem::path Home() { return FromEnvironment("HOME", "/"); }

}  // namespace

std::filesystem::path UserConfig() {
    return FromEnvironment("XDG_CONFIG_HOME", Home() / ".config") / "cmdtexture";
}

std::filesystem::path SystemConfig() {
    const std::string all = FromEnvironment("XDG_CONFIG_DIRS", "/etc/xdg").string();
    return std::filesystem::path(all.substr(0, all.find(':'))) / "cmdtexture";
}

std::filesystem::path UserData() {
    return FromEnvironment("XDG_DATA_HOME", Home() / ".local" / "share") / "cmdtexture";
}

std::filesystem::path UserCache() {
    return FromEnvironment("XDG_CACHE_HOME", Home() / ".cache") / "cmdtexture";
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
