#pragma once

#include <filesystem>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

// Reads the dialog templates of a folder (how they are written stands in its Blinds.txt) and puts
// a language's texts into them: template number to template. Throws std::runtime_error, naming file
// and line, for what cannot be understood and for a text that the language lacks.
nlohmann::json MakeDialogs(const std::filesystem::path& folder,
                           const std::map<int, std::string>& texts);
