#pragma once

#include <filesystem>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/IParameterRepository.h"
#include "host/core/Geometry.h"
#include "host/core/HostApi.h"

// The presets that a user can choose: those that ship with the program, in the language that is
// selected, and the user's own. A preset that ships is one JSON file below presets/EFFECT of the
// installation; what it is called lies in the languages' presets.txt, as "EFFECT/FILE = NAME |
// DESCRIPTION", and in English where a language has no name for it.
namespace presets {

struct SPreset {
    std::string id;           // what a command line calls it: the file's name without .json
    std::string name;         // what people call it; a user's own has no other name than its id
    std::string description;  // what it looks like; may be empty
    std::filesystem::path file;
    bool ships = false;
};

// The user's own presets of an effect, then those that ship, each in order of name.
HOST_API std::vector<SPreset> List(const std::string& effect);
// The preset that a name means: the user's own of that very name before one that ships, which goes
// by its id and by its name in any language, in any letter case.
HOST_API std::optional<SPreset> Find(const std::string& effect, const std::string& name);
// What to tell who asked for one that is none of the known: the nearest, else all of them.
HOST_API std::string Hint(const std::string& wanted, const std::vector<SPreset>& known);

// A preset may say, under "$scale", that some of its values count pixels of a picture of a certain
// size: {"pixels": 1000000, "parameters": ["Width"]}. On another picture they grow and shrink with
// its side, so that the result looks the same. A preset without it means what it says.
struct SScaled {
    double value = 0;   // in a picture of
    double pixels = 0;  // so many pixels
    // The value for a picture of a size (of no size: the value itself), within the range.
    HOST_API std::int64_t For(CSize picture, const IParameter& parameter) const;
};
// The scaled values of a preset by parameter index, "$scale" being taken out of it. Throws CRefused
// when it is not as above.
HOST_API std::map<int, SScaled> TakeScaled(nlohmann::ordered_json& preset,
                                           IParameterRepository& repository);
// The plain values of a preset for a picture of a size. Throws CRefused like TakeScaled.
HOST_API nlohmann::ordered_json ForPicture(nlohmann::ordered_json preset,
                                           IParameterRepository& repository, CSize picture);

}  // namespace presets
