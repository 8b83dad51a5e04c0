#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/cli/Commands.h"
#include "app/cli/Document.h"
#include "app/cli/Options.h"

namespace {

struct SDescribeOptions {
    SSessionOptions session;
    std::string effect;
    std::string canvas;
    bool json = false;
};

void PrintForPeople(const SEffectInfo& effect) {
    std::cout << fmt::format("{} ({})\n{}\n\nParameters:\n", effect.display_name, effect.name,
                             effect.description);
    for (const SParameterInfo& parameter : effect.parameters) {
        std::cout << fmt::format("  {:<17} {}\n{:20}{}; default {}\n", parameter.name,
                                 parameter.description, "", parameter.accepts,
                                 parameter.default_text.empty() ? "empty" : parameter.default_text);
    }
}

void Describe(const SDescribeOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::string name = EffectName(library, options.effect);
    std::optional<CSize> canvas;
    if (!options.canvas.empty()) canvas = ParseSize(options.canvas, "--canvas");
    const SEffectInfo effect = library.Describe(name, canvas);
    if (!options.json) return PrintForPeople(effect);
    std::cout << ToJson(effect).dump(2) << '\n';
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
