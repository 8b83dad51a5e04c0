#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>

// The messages of a language from its PO file: English text to translation. Texts that are marked
// fuzzy or not translated are left out. Throws std::runtime_error, naming file and line, for what
// cannot be understood, a text that stands twice, and a translation that does not have the
// placeholders of the English text.
nlohmann::json ReadMessages(const std::filesystem::path& file);
