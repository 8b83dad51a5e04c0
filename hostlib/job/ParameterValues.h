#pragma once

#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"

// Parameters by name, as the command line, presets and scripts give them. Values are texts
// ("NAME=VALUE") or JSON: integers, true and false, colours as "#RRGGBB", members of an enumeration
// by name or number, strings.
namespace parameters {

// A name or value that is refused: what is wrong, and what would be right.
class HOST_API CRefused : public std::runtime_error {
  public:
    CRefused(const std::string& what, std::string hint = {})
        : std::runtime_error(what), hint_(std::move(hint)) {}
    const std::string& Hint() const { return hint_; }

  private:
    std::string hint_;
};

// The parameters of a repository in index order.
HOST_API std::vector<IParameter*> All(IParameterRepository& repository);
// The parameter of a name (letter case ignored). Throws CRefused, with the nearest name as hint.
HOST_API IParameter& Find(IParameterRepository& repository, const std::string& name);

// Sets a parameter from a text. Throws CRefused for the wrong type or a value out of range.
HOST_API void SetFromText(IParameter& parameter, const std::string& text);
// Sets every parameter that the object names. Throws CRefused for anything but an object of names
// to values; nothing is then set.
HOST_API void SetFromJson(IParameterRepository& repository, const nlohmann::ordered_json& values);

// "integer", "boolean", "enumeration", "colour" or "string".
HOST_API const char* TypeName(EParameterType type);
// The current value as a text that SetFromText reads.
HOST_API std::string ToText(const IParameter& parameter);
// The current value, or the default, as JSON; members of enumerations as numbers.
HOST_API nlohmann::ordered_json ToJson(const IParameter& parameter);
HOST_API nlohmann::ordered_json DefaultToJson(const IParameter& parameter);
// All current values by name.
HOST_API nlohmann::ordered_json ToJson(IParameterRepository& repository);
// What values a parameter takes, for people: "2 to 600", "#RRGGBB".
HOST_API std::string DescribeValues(const IParameter& parameter);
// The names of an enumeration's members; empty for other types.
HOST_API std::vector<std::string> MemberNames(const IParameter& parameter);

}  // namespace parameters
