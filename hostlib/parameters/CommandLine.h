#pragma once

#include <string>

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"

// The command line that applies an effect with the values of its repository:
//   cmdtexture apply EFFECT INPUT -o OUTPUT [-p NAME=VALUE]...
// Values that are defaults are left out. Quoted for a POSIX shell.
HOST_API std::string ApplyCommandLine(const std::string& effect, const std::string& input,
                                      const std::string& output, IParameterRepository& repository);
