#include "job/Installation.h"

#include <cstdlib>

#include "hostlib/system/LibraryFile.h"

SInstallation SInstallation::At(const std::filesystem::path& prefix) {
    const std::filesystem::path plugins = prefix / "lib" / "cmdtexture";
    return {plugins / "CmdTexture.so", plugins, prefix / "share" / "cmdtexture"};
}

SInstallation FindInstallation() {
    // Not for a program that runs with more rights than its user: the module is code.
    const char* home = secure_getenv("CMDTEXTURE_HOME");
    if (home && *home) return SInstallation::At(home);
    return SInstallation::At(LibraryFile().parent_path().parent_path().parent_path());
}
