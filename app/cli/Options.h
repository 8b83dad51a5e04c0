#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "app/cli/CSession.h"
#include "app/cli/Library.h"
#include "host/commands/IParameterRepository.h"

// Options that several subcommands share, so that they read and work alike everywhere.
void AddSessionOptions(CLI::App& command, SSessionOptions& options);

// The parameters that the user gave: presets first, then single values over them.
struct SParameterOptions {
    std::vector<std::string> values;  // NAME=VALUE
    std::string preset;               // a file, or the name of a saved preset
};
void AddParameterOptions(CLI::App& command, SParameterOptions& options);
// Sets what was given. Throws CCliError (usage) for what does not fit.
void SetParameters(IParameterRepository& repository, const std::string& effect,
                   const SParameterOptions& options);
// Checks names and types before anything is read; ranges may depend on the canvas and are checked
// again with it. Throws CCliError, also for pictures that the library does not have.
void CheckParameters(const CSession& session, const CFileResourceLibrary& library,
                     const std::string& effect, const SParameterOptions& options);
