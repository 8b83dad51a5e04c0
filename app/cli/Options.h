#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/cli/Jobs.h"

// Options that several subcommands share, so that they read and work alike everywhere. What
// descriptions say is translated when help is shown; type names tell completion what to offer.
void AddLanguageOption(CLI::App& command, std::string& language);
void AddSessionOptions(CLI::App& command, SSessionOptions& options);
void AddParameterOptions(CLI::App& command, SParameterOptions& options);
// EFFECT, -p, --preset, and --recipe instead of all of them.
void AddWorkOptions(CLI::App& command, SWorkOptions& options);
// "--resources DIR", which may be given several times.
void AddLibraryOption(CLI::App& command, std::vector<std::string>& folders);
// The argument EFFECT.
CLI::Option* AddEffectArgument(CLI::App& command, std::string& effect);
// --json, which also makes objects of messages (messages::UseJson, as soon as the program begins).
void AddJsonOption(CLI::App& command, bool& json);

// Checks whose refusals are in the user's language.
CLI::Validator WholeNumbers(std::int64_t least, std::int64_t most);
CLI::Validator Seconds();
CLI::Validator OneOf(std::vector<std::string> names);
// Turns 512M or 1G into bytes.
CLI::Validator Bytes();

// A command line, and what it asks for before it is understood: the last --language, and whether
// --json is there. Wherever they stand, also before the subcommand, they are put at the end of the
// options, where it looks for them.
struct SCommandLine {
    std::string language;
    bool json = false;
    std::vector<std::string> arguments;
};
SCommandLine ReadCommandLine(int count, const char* const* arguments);
