#include "hostlib/parameters/ParameterValues.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "host/commands/ParameterDefinition.h"
#include "hostlib/core/WholeNumber.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/ColourNames.h"
#include "hostlib/parameters/NearestName.h"

namespace parameters {
namespace {

using nlohmann::ordered_json;

std::optional<std::int64_t> ParseBoolean(const std::string& text) {
    if (SameName(text, "true")) return 1;
    if (SameName(text, "false")) return 0;
    return std::nullopt;
}

std::optional<std::int64_t> ParseColour(const std::string& text) {
    const std::optional<std::uint32_t> rgb = ColourFromText(text);
    if (!rgb) return std::nullopt;
    return CColorRef::FromRgb(static_cast<int>(*rgb >> 16), static_cast<int>(*rgb >> 8 & 255U),
                              static_cast<int>(*rgb & 255U))
        .value;
}

std::optional<std::int64_t> ParseMember(const IParameter& parameter, const std::string& text) {
    const std::vector<std::string> names = MemberNames(parameter);
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const std::string& name) { return SameName(name, text); });
    if (found != names.end()) return found - names.begin();
    return WholeNumber(text);
}

std::optional<std::int64_t> ParseNumber(const IParameter& parameter, const std::string& text) {
    switch (parameter.Type()) {
        case EParameterType::Boolean:
            return ParseBoolean(text);
        case EParameterType::Colour:
            return ParseColour(text);
        case EParameterType::Enumeration:
            return ParseMember(parameter, text);
        case EParameterType::Integer:
        case EParameterType::String:
            break;
    }
    return WholeNumber(text);
}

// The name that was meant by a text that is none.
std::string HintFor(const IParameter& parameter, const std::string& text) {
    if (parameter.Type() == EParameterType::Enumeration && !WholeNumber(text)) {
        return DidYouMean(text, MemberNames(parameter));
    }
    if (parameter.Type() == EParameterType::Colour) return DidYouMean(text, ColourNames());
    return {};
}

[[noreturn]] void Refuse(const IParameter& parameter, const std::string& text) {
    throw CRefused(Tr("parameter {}: {} is not possible; it takes {}", ToUtf8(parameter.Name()),
                      text.empty() ? Tr("an empty value") : text, DescribeValues(parameter)),
                   HintFor(parameter, text));
}

bool HasRange(const IParameter& parameter) {
    return parameter.Type() == EParameterType::Integer ||
           parameter.Type() == EParameterType::Enumeration;
}

std::string ColourText(std::int64_t packed) {
    const CColorRef colour{static_cast<COLORREF>(packed)};
    return fmt::format("#{:02X}{:02X}{:02X}", colour.Red(), colour.Green(), colour.Blue());
}

std::string TextOf(const IParameter& parameter, std::int64_t number, const CString& text) {
    switch (parameter.Type()) {
        case EParameterType::Boolean:
            return number ? "true" : "false";
        case EParameterType::Colour:
            return ColourText(number);
        case EParameterType::String:
            return ToUtf8(text);
        case EParameterType::Integer:
        case EParameterType::Enumeration:
            break;
    }
    return std::to_string(number);
}

// A JSON value in the text form; nothing for one whose JSON type cannot be meant.
std::optional<std::string> TextOf(const IParameter& parameter, const ordered_json& value) {
    const EParameterType type = parameter.Type();
    if (value.is_string() && type != EParameterType::Integer && type != EParameterType::Boolean) {
        return value.get<std::string>();
    }
    const bool number = value.is_number_integer() && HasRange(parameter);
    const bool truth = value.is_boolean() && type == EParameterType::Boolean;
    if (number || truth) return value.dump();
    return std::nullopt;
}

void CheckRange(const IParameter& parameter, const SValue& value) {
    const bool outside = value.number < parameter.Minimum() || value.number > parameter.Maximum();
    if (HasRange(parameter) && outside) Refuse(parameter, value.written);
}

}  // namespace

std::vector<IParameter*> All(IParameterRepository& repository) {
    std::vector<IParameter*> all;
    for (int i = 0; i < repository.Count(); ++i) {
        if (IParameter* parameter = repository.At(i)) all.push_back(parameter);
    }
    return all;
}

int IndexOf(IParameterRepository& repository, const std::string& name) {
    std::vector<std::string> names;
    for (int i = 0; i < repository.Count(); ++i) {
        const IParameter* parameter = repository.At(i);
        if (!parameter) continue;
        names.push_back(ToUtf8(parameter->Name()));
        if (SameName(names.back(), name)) return i;
    }
    const std::string hint = DidYouMean(name, names);
    throw CRefused(Tr("unknown parameter \"{}\"", name),
                   hint.empty() ? Tr("the parameters are {}", fmt::join(names, ", ")) : hint);
}

IParameter& Find(IParameterRepository& repository, const std::string& name) {
    return *repository.At(IndexOf(repository, name));
}

SValue Parse(const IParameter& parameter, const std::string& text) {
    if (parameter.Type() == EParameterType::String) return {text};
    const std::optional<std::int64_t> number = ParseNumber(parameter, text);
    if (!number) Refuse(parameter, text);
    return {text, *number};
}

void Set(IParameter& parameter, const SValue& value) {
    if (parameter.Type() == EParameterType::String) {
        parameter.SetText(FromUtf8(value.written));
        return;
    }
    CheckRange(parameter, value);
    parameter.SetNumber(value.number);
}

std::map<int, SValue> SetFromJson(IParameterRepository& repository, const ordered_json& values) {
    if (!values.is_object()) throw CRefused(Tr("a preset is a JSON object of names to values"));
    std::map<int, SValue> parsed;
    for (const auto& [name, value] : values.items()) {
        const int index = IndexOf(repository, name);
        const IParameter& parameter = *repository.At(index);
        const std::optional<std::string> text = TextOf(parameter, value);
        if (!text) Refuse(parameter, value.dump());
        parsed[index] = Parse(parameter, *text);
        CheckRange(parameter, parsed[index]);
    }
    for (const auto& [index, value] : parsed) Set(*repository.At(index), value);
    return parsed;
}

const char* TypeName(EParameterType type) {
    switch (type) {
        case EParameterType::Integer:
            return "integer";
        case EParameterType::Boolean:
            return "boolean";
        case EParameterType::Enumeration:
            return "enumeration";
        case EParameterType::Colour:
            return "colour";
        case EParameterType::String:
            break;
    }
    return "string";
}

std::string ToText(const IParameter& parameter) {
    return TextOf(parameter, parameter.Number(), parameter.Text());
}

std::string DefaultToText(const IParameter& parameter) {
    return TextOf(parameter, parameter.DefaultNumber(), parameter.DefaultText());
}

std::map<int, SValue> CurrentValues(IParameterRepository& repository) {
    std::map<int, SValue> values;
    for (int i = 0; i < repository.Count(); ++i) {
        const IParameter* parameter = repository.At(i);
        if (parameter) values[i] = {ToText(*parameter), parameter->Number()};
    }
    return values;
}

ordered_json ToJson(const IParameter& parameter) {
    if (HasRange(parameter)) return parameter.Number();
    if (parameter.Type() == EParameterType::Boolean) return parameter.Number() != 0;
    return ToText(parameter);
}

ordered_json ToJson(IParameterRepository& repository) {
    ordered_json values = ordered_json::object();
    for (const IParameter* parameter : All(repository)) {
        values[ToUtf8(parameter->Name())] = ToJson(*parameter);
    }
    return values;
}

std::string DescribeValues(const IParameter& parameter) {
    switch (parameter.Type()) {
        case EParameterType::Boolean:
            return Tr("true or false");
        case EParameterType::Colour:
            return Tr("a colour as #RRGGBB or #RGB, or its CSS name");
        case EParameterType::String:
            return Tr("a text");
        case EParameterType::Enumeration:
            return Tr("{} (or 0 to {})", fmt::join(MemberNames(parameter), ", "),
                      parameter.Maximum());
        case EParameterType::Integer:
            break;
    }
    return Tr("a whole number from {} to {}", parameter.Minimum(), parameter.Maximum());
}

std::vector<std::string> MemberNames(const IParameter& parameter) {
    if (parameter.Type() != EParameterType::Enumeration) return {};
    const auto& members = EnumMembers(parameter.EnumType());
    return {members.begin(), members.end()};
}

}  // namespace parameters
