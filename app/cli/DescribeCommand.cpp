#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/cli/Commands.h"
#include "app/cli/Document.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"
#include "hostlib/language/Texts.h"

namespace {

struct SDescribeOptions {
    SSessionOptions session;
    std::string effect;
    std::string canvas;
    bool json = false;
};

void PrintForPeople(const SEffectInfo& effect) {
    std::cout << fmt::format("{} ({})\n{}\n\n{}\n", effect.display_name, effect.name,
                             effect.description, Tr("Parameters:"));
    for (const SParameterInfo& parameter : effect.parameters) {
        const std::string otherwise =
            parameter.default_text.empty() ? Tr("empty") : parameter.default_text;
        std::cout << fmt::format("  {:<17} {}\n{:20}{}\n", parameter.name, parameter.description,
                                 "", Tr("{}; {}", parameter.accepts, Tr("default: {}", otherwise)));
    }
    std::cout << fmt::format("\n{}\n", Tr("What it is called:"));
    const nlohmann::ordered_json roads = RoadsTo(effect.name);
    for (const auto& [road, name] : roads.items()) {
        std::cout << fmt::format("  {:<17} {}\n", road, name.get<std::string>());
    }
}

void Describe(const SDescribeOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::string name = EffectName(library, options.effect);
    std::optional<CSize> canvas;
    if (!options.canvas.empty()) canvas = ParseSize(options.canvas, "--canvas");
    const SEffectInfo effect = library.Describe(name, canvas);
    if (!options.json) return PrintForPeople(effect);
    report::Print(ToJson(effect));
}

}  // namespace

void AddDescribeCommand(CLI::App& program) {
    auto* command = program.add_subcommand("describe", "Show the parameters of an effect");
    auto options = std::make_shared<SDescribeOptions>();
    AddEffectArgument(*command, options->effect);
    command
        ->add_option("--canvas", options->canvas,
                     "Give the ranges for a document of this size; without it, for none")
        ->type_name("WxH");
    AddJsonOption(*command, options->json);
    AddSessionOptions(*command, options->session);
    command->callback([options] { Describe(*options); });
}
