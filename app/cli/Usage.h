#pragma once

#include <CLI/CLI.hpp>

#include "app/cli/CliError.h"

// The subcommand that the user chose, as deep as the command line was understood.
const CLI::App& ChosenCommand(const CLI::App& program);
// "cmdtexture preset save".
std::string FullName(const CLI::App& command);
// What is wrong with a command line that could not be parsed: what the user wrote, in its order,
// and what was probably meant.
CCliError UsageError(const CLI::App& program, const CLI::ParseError& error);
