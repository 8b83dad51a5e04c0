#pragma once

#include <string>

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"

// A word, or the name of a file, as a POSIX shell takes it for itself. A name that begins with a
// dash would be read as an option, so it gets its folder.
HOST_API std::string QuotedForShell(const std::string& word);
HOST_API std::string QuotedFile(const std::string& file);

// The command line that applies an effect with the values of its repository:
//   cmdtexture apply EFFECT INPUT -o OUTPUT [-p NAME=VALUE]...
// Values that are defaults are left out. Quoted for a POSIX shell.
HOST_API std::string ApplyCommandLine(const std::string& effect, const std::string& input,
                                      const std::string& output, IParameterRepository& repository);
