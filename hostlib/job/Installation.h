#pragma once

#include <filesystem>

#include "host/core/HostApi.h"

// Where the parts of the running installation lie, found relative to the program, so that a build
// folder and an installation prefix work alike.
struct SInstallation {
    std::filesystem::path module;   // the plug-in
    std::filesystem::path plugins;  // the folder of the plug-in and of libraries loaded on demand
    std::filesystem::path data;     // Languages/ and resources/
};
HOST_API SInstallation FindInstallation();
