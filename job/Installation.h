#pragma once

#include <filesystem>

// Where the parts of an installation lie. A build folder is laid out as an installation is.
struct SInstallation {
    std::filesystem::path module;   // the plug-in
    std::filesystem::path plugins;  // the folder of the plug-in and of libraries loaded on demand
    std::filesystem::path data;     // Languages/ and resources/

    // Below a prefix: lib/cmdtexture/ and share/cmdtexture/.
    static SInstallation At(const std::filesystem::path& prefix);
};
// The installation that the environment variable CMDTEXTURE_HOME names by its prefix; without it,
// the one that the host's library was loaded from, whatever the program is.
SInstallation FindInstallation();
