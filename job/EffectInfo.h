#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/commands/CCmdEffect.h"

// What an effect and its parameters are, as plain values; texts are UTF-8, those for people in the
// language of the library that was asked.

struct SParameterInfo {
    int index = 0;
    std::string name;
    EParameterType type = EParameterType::Integer;
    std::int32_t minimum = 0;  // integers and enumerations
    std::int32_t maximum = 0;
    std::int64_t default_number = 0;  // integers, members, booleans (0, 1), colours 0x00BBGGRR
    std::string default_text;         // the default as a text that sets it
    std::string label, description;
    std::vector<std::string> members;        // of an enumeration, in the order of their numbers
    std::vector<std::string> member_labels;  // what people read for them
    std::string accepts;    // "a whole number from 2 to 600", "a colour as #RRGGBB"
    int resource_type = 0;  // of a string that names a picture of the library: which; else 0

    bool HasRange() const {
        return type == EParameterType::Integer || type == EParameterType::Enumeration;
    }
};

struct SEffectInfo {
    std::string name, display_name, english_name;
    std::string guid;
    int command_id = 0;
    std::string description;
    bool works_at_16_bits = true;            // false: a 16-bit picture is changed in 8-bit steps
    std::vector<SParameterInfo> parameters;  // in index order

    // Of a command; the parameters those of its repository, none without one.
    static SEffectInfo Of(const CCmdEffect& command);
};

// The effect as JSON: name, displayName, englishName, guid, commandId, description.
nlohmann::ordered_json IdentityToJson(const SEffectInfo& effect);
// What an effect is called by the program, in C, as an operation of GEGL and in Python: `program`,
// `c`, `gegl`, `python`.
nlohmann::ordered_json RoadsTo(const std::string& name);
// The effect as JSON: that of IdentityToJson with `roads` and `parameters`: index, name, type,
// minimum, maximum, default, label, description and the members of enumerations.
nlohmann::ordered_json ToJson(const SEffectInfo& effect);
