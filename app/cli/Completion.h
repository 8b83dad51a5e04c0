#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

// What a command line may go on with, for the shells: the scripts in completion/ call
//   cmdtexture complete -- WORD...
// with the words after the program's name, the last of which is being written. A line of the answer
// is a candidate, a tab and what it is; ":files" and ":folders" ask the shell for those of its own.
// Everything comes from the tables of subcommands, options, effects, parameters, presets, patterns
// and textures.
namespace completion {
bool IsAsked(const std::vector<std::string>& arguments);
void Complete(const CLI::App& program, const std::vector<std::string>& words);
}  // namespace completion
