#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"

// Parameters by name, as the command line, presets and scripts give them. Values are texts
// ("NAME=VALUE") or JSON: integers, true and false, colours as ColourFromText reads them, members
// of an enumeration by name or number, strings.
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
// The parameter of a name (letter case ignored), or its index. Throws CRefused, with the nearest
// name as hint.
HOST_API int IndexOf(IParameterRepository& repository, const std::string& name);
HOST_API IParameter& Find(IParameterRepository& repository, const std::string& name);

// A value as it was written, and the number that it stands for (texts stand for themselves).
struct SValue {
    std::string written;
    std::int64_t number = 0;
};
// Reads a value. Throws CRefused for one of another type.
HOST_API SValue Parse(const IParameter& parameter, const std::string& text);
// Sets a parameter. Throws CRefused for a value out of range.
HOST_API void Set(IParameter& parameter, const SValue& value);
// Sets every parameter that the object names, and answers the values by index. Throws CRefused for
// anything but an object of names to values that are possible; nothing is then set.
HOST_API std::map<int, SValue> SetFromJson(IParameterRepository& repository,
                                           const nlohmann::ordered_json& values);

// "integer", "boolean", "enumeration", "colour" or "string".
HOST_API const char* TypeName(EParameterType type);
// The current value, or the default, as a text that Parse reads.
HOST_API std::string ToText(const IParameter& parameter);
HOST_API std::string DefaultToText(const IParameter& parameter);
// All current values by index.
HOST_API std::map<int, SValue> CurrentValues(IParameterRepository& repository);
// The current value as JSON; members of enumerations as numbers.
HOST_API nlohmann::ordered_json ToJson(const IParameter& parameter);
// All current values by name.
HOST_API nlohmann::ordered_json ToJson(IParameterRepository& repository);
// What values a parameter takes, for people, in the language of messages: "a whole number from 2 to
// 600".
HOST_API std::string DescribeValues(const IParameter& parameter);
// The names of an enumeration's members; empty for other types.
HOST_API std::vector<std::string> MemberNames(const IParameter& parameter);

}  // namespace parameters
