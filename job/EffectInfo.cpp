#include "job/EffectInfo.h"

#include <nlohmann/json.hpp>

#include "hostlib/parameters/ParameterValues.h"
#include "job/CRunResources.h"

namespace {

using nlohmann::ordered_json;

std::vector<std::string> MemberLabels(const IParameter& parameter) {
    std::vector<std::string> labels;
    for (const CString& label : parameter.MemberLabels()) labels.push_back(ToUtf8(label));
    return labels.empty() ? parameters::MemberNames(parameter) : labels;
}

SParameterInfo Describe(int index, const IParameter& parameter) {
    return {.index = index,
            .name = ToUtf8(parameter.Name()),
            .type = parameter.Type(),
            .minimum = parameter.Minimum(),
            .maximum = parameter.Maximum(),
            .default_number = parameter.DefaultNumber(),
            .default_text = parameters::DefaultToText(parameter),
            .label = ToUtf8(parameter.Label()),
            .description = ToUtf8(parameter.Description()),
            .members = parameters::MemberNames(parameter),
            .member_labels = MemberLabels(parameter),
            .accepts = CRunResources::Accepts(parameter),
            .resource_type = CRunResources::TypeOf(parameter)};
}

ordered_json DefaultOf(const SParameterInfo& parameter) {
    if (parameter.HasRange()) return parameter.default_number;
    if (parameter.type == EParameterType::Boolean) return parameter.default_number != 0;
    return parameter.default_text;
}

ordered_json ToJson(const SParameterInfo& parameter) {
    const auto bound = [&](int value) {
        return parameter.HasRange() ? ordered_json(value) : ordered_json(nullptr);
    };
    ordered_json row = {{"index", parameter.index},
                        {"name", parameter.name},
                        {"type", parameters::TypeName(parameter.type)},
                        {"minimum", bound(parameter.minimum)},
                        {"maximum", bound(parameter.maximum)},
                        {"default", DefaultOf(parameter)},
                        {"label", parameter.label},
                        {"description", parameter.description}};
    if (parameter.type == EParameterType::Enumeration) {
        row["members"] = parameter.members;
        row["memberLabels"] = parameter.member_labels;
    }
    return row;
}

// "FineLeather" as "fine-leather", with any sign between the words.
std::string InSmallLetters(const std::string& name, char between) {
    std::string words;
    for (const char c : name) {
        const bool is_capital = c >= 'A' && c <= 'Z';
        if (is_capital && !words.empty()) words += between;
        words += is_capital ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return words;
}

}  // namespace

ordered_json RoadsTo(const std::string& name) {
    return {{"program", "cmdtexture apply " + name},
            {"c", "cmdtexture_effect_new(library, \"" + name + "\", &effect, &error)"},
            {"gegl", "cmdtexture:" + InSmallLetters(name, '-')},
            {"python", "cmdtexture." + InSmallLetters(name, '_')}};
}

SEffectInfo SEffectInfo::Of(const CCmdEffect& command) {
    const ICmdResourceData& data = *command.GetResourceData();
    SEffectInfo effect{.name = ToUtf8(data.GetComponentName()),
                       .display_name = ToUtf8(data.GetDisplayName()),
                       .english_name = ToUtf8(data.GetEnglishDisplayName()),
                       .guid = ToText(data.GetComponentGuid()),
                       .command_id = data.GetCommandId(),
                       .description = ToUtf8(data.GetTextC()),
                       .works_at_16_bits = command.WorksAt16Bits(),
                       .parameters = {}};
    const IParameterRepository* repository = command.BoundRepository();
    for (int i = 0; repository && i < repository->Count(); ++i) {
        if (const IParameter* parameter = repository->At(i)) {
            effect.parameters.push_back(Describe(i, *parameter));
        }
    }
    return effect;
}

ordered_json IdentityToJson(const SEffectInfo& effect) {
    return {{"name", effect.name},
            {"displayName", effect.display_name},
            {"englishName", effect.english_name},
            {"guid", effect.guid},
            {"commandId", effect.command_id},
            {"description", effect.description}};
}

ordered_json ToJson(const SEffectInfo& effect) {
    ordered_json json = IdentityToJson(effect);
    auto rows = ordered_json::array();
    for (const SParameterInfo& parameter : effect.parameters) rows.push_back(ToJson(parameter));
    json["parameters"] = rows;
    json["roads"] = RoadsTo(effect.name);
    return json;
}
