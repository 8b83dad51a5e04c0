#include "hostlib/job/Installation.h"

SInstallation FindInstallation() {
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    const std::filesystem::path prefix = program.parent_path().parent_path();
    const std::filesystem::path plugins = prefix / "lib" / "cmdtexture";
    return {plugins / "CmdTexture.so", plugins, prefix / "share" / "cmdtexture"};
}
