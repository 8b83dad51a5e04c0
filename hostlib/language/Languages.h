#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/core/HostApi.h"

// What the program does with languages: which there are, and which is used.
namespace languages {
// The codes of the languages below `<data>/Languages`, "EN" first, then in order.
HOST_API std::vector<std::string> Available(const std::filesystem::path& data);
// The language that the environment asks for (LC_ALL, LC_MESSAGES, LANG), or "EN" when it is not
// among `available`.
HOST_API std::string Preferred(const std::vector<std::string>& available);
// Takes the texts of a language, by its code, from now on, and links every module's resources
// anew. English is the alternative for a file that the language lacks.
HOST_API void Select(const std::filesystem::path& data, const std::string& code);
// What is wrong with a language file, naming it; empty when it can be used.
HOST_API std::string Problem(const std::filesystem::path& file);
}  // namespace languages
