#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/core/HostApi.h"

// Stored parameter values: a preset is a JSON object of parameter names to values, in a file of its
// own. Presets that are saved by name lie in the user's configuration folder, one folder an effect.
// Everything throws CNException, naming the file and what is wrong with it: code 101 for a name
// that no preset can have, else 105.
namespace presets {

// The values of a preset file, which is at most one megabyte of strict JSON.
HOST_API nlohmann::ordered_json Read(const std::filesystem::path& file);
// The file of an effect's preset. A name is not empty and has no slash and no leading dot.
HOST_API std::filesystem::path FileOf(const std::string& effect, const std::string& name);
// The names of an effect's saved presets, in order.
HOST_API std::vector<std::string> Names(const std::string& effect);
// Writes a preset in full or not at all; an existing one of that name is replaced when `overwrite`
// is set. Returns its file.
HOST_API std::filesystem::path Save(const std::string& effect, const std::string& name,
                                    const nlohmann::ordered_json& values, bool overwrite);
HOST_API void Remove(const std::string& effect, const std::string& name);

// The values with which an effect was last run from its dialog, kept beside the presets. Nothing,
// as an empty object, when there are none or they cannot be read.
HOST_API void Remember(const std::string& effect, const nlohmann::ordered_json& values);
HOST_API nlohmann::ordered_json Remembered(const std::string& effect);

}  // namespace presets
