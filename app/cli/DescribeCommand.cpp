#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/Commands.h"
#include "app/cli/EffectJson.h"
#include "app/cli/Options.h"
#include "hostlib/job/ParameterValues.h"

namespace {

using nlohmann::ordered_json;

struct SDescribeOptions {
    SSessionOptions session;
    std::string effect;
    std::string canvas;
    bool json = false;
};

ordered_json ParameterToJson(int index, const IParameter& parameter) {
    const bool ranged = parameter.Type() == EParameterType::Integer ||
                        parameter.Type() == EParameterType::Enumeration;
    ordered_json row = {
        {"index", index},
        {"name", ToUtf8(parameter.Name())},
        {"type", parameters::TypeName(parameter.Type())},
        {"minimum", ranged ? ordered_json(parameter.Minimum()) : ordered_json(nullptr)},
        {"maximum", ranged ? ordered_json(parameter.Maximum()) : ordered_json(nullptr)},
        {"default", parameters::DefaultToJson(parameter)},
        {"label", ToUtf8(parameter.Label())},
        {"description", ToUtf8(parameter.Description())}};
    if (parameter.Type() == EParameterType::Enumeration) {
        row["members"] = parameters::MemberNames(parameter);
    }
    return row;
}

void PrintForPeople(const ordered_json& effect, IParameterRepository& repository) {
    std::cout << fmt::format(
        "{} ({})\n{}\n\nParameters:\n", effect["displayName"].get<std::string>(),
        effect["name"].get<std::string>(), effect["description"].get<std::string>());
    for (const IParameter* parameter : parameters::All(repository)) {
        const std::string value = parameters::ToText(*parameter);
        std::cout << fmt::format("  {:<17} {}\n{:20}{}; default {}\n", ToUtf8(parameter->Name()),
                                 ToUtf8(parameter->Description()), "",
                                 parameters::DescribeValues(*parameter),
                                 value.empty() ? "empty" : value);
    }
}

void Describe(const SDescribeOptions& options) {
    const CSession session(options.session);
    const TRef<CCmdEffect> command = session.Effect(options.effect);
    TRef<INGLGraphic> document;
    if (!options.canvas.empty()) document = new CDocument(ParseSize(options.canvas, "--canvas"));
    const TRef<CExecutionContext> context(new CExecutionContext(document, {}, nullptr));
    PrepareCommand(*command, context.Get());

    IParameterRepository& repository = *command->BoundRepository();
    ordered_json effect = EffectToJson(*command);
    if (!options.json) return PrintForPeople(effect, repository);
    auto rows = ordered_json::array();
    for (int i = 0; i < repository.Count(); ++i) {
        rows.push_back(ParameterToJson(i, *repository.At(i)));
    }
    effect["parameters"] = rows;
    std::cout << effect.dump(2) << '\n';
}

}  // namespace

void AddDescribeCommand(CLI::App& program) {
    auto* command = program.add_subcommand("describe", "Show the parameters of an effect");
    auto options = std::make_shared<SDescribeOptions>();
    command->add_option("EFFECT", options->effect, "Name of the effect")->required();
    command
        ->add_option("--canvas", options->canvas,
                     "Give the ranges for a document of this size; without it, for none")
        ->type_name("WxH");
    command->add_flag("--json", options->json, "Print a JSON object");
    AddSessionOptions(*command, options->session);
    command->callback([options] { Describe(*options); });
}
