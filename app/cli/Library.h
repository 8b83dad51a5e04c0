#pragma once

#include <string>
#include <vector>

#include "app/resources/CFileResourceLibrary.h"
#include "host/commands/IParameterRepository.h"
#include "host/core/TRef.h"

namespace CLI {
class App;
}

// "--resources DIR", which may be given several times.
void AddLibraryOption(CLI::App& command, std::vector<std::string>& folders);
// The installation's pictures with the user's folders before them. Throws CCliError for a folder
// that is not there.
TRef<CFileResourceLibrary> OpenLibrary(const std::vector<std::string>& folders);
// Refuses names of patterns and textures that the library does not have, before the effect runs.
void CheckResourceNames(IParameterRepository& repository, const CFileResourceLibrary& library);
