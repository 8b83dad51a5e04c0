#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "app/cli/Jobs.h"

// Options that several subcommands share, so that they read and work alike everywhere.
void AddSessionOptions(CLI::App& command, SSessionOptions& options);
void AddParameterOptions(CLI::App& command, SParameterOptions& options);
// EFFECT, -p, --preset, and --recipe instead of all of them.
void AddWorkOptions(CLI::App& command, SWorkOptions& options);
// "--resources DIR", which may be given several times.
void AddLibraryOption(CLI::App& command, std::vector<std::string>& folders);
