#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "hostlib/job/ParameterValues.h"
#include "hostlib/job/Presets.h"

namespace {

struct SPresetOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    std::string effect, name;
    bool overwrite = false;
};

// The effect's component name and its values: the defaults, with what the user gave over them.
std::pair<std::string, TRef<CCmdEffect>> EffectWithValues(const CSession& session,
                                                          const SPresetOptions& options) {
    const TRef<CCmdEffect> command = session.Effect(options.effect);
    PrepareCommand(*command, nullptr);
    const std::string effect = ToUtf8(command->GetResourceData()->GetComponentName());
    SetParameters(*command->BoundRepository(), effect, options.parameters);
    return {effect, command};
}

void Show(SPresetOptions options) {
    const CSession session(options.session);
    if (!options.name.empty()) options.parameters.preset = options.name;
    const auto [effect, command] = EffectWithValues(session, options);
    std::cout << parameters::ToJson(*command->BoundRepository()).dump(2) << '\n';
}

void Save(const SPresetOptions& options) {
    const CSession session(options.session);
    const auto [effect, command] = EffectWithValues(session, options);
    try {
        const auto file =
            presets::Save(effect, options.name, parameters::ToJson(*command->BoundRepository()),
                          options.overwrite);
        std::cout << file.string() << '\n';
    } catch (const CNException& error) {
        throw CCliError(EExit::Output, error.what(),
                        options.overwrite ? "" : "--overwrite replaces an existing preset");
    }
}

void ListPresets(const SPresetOptions& options) {
    const CSession session(options.session);
    for (const std::string& effect : session.Module().Names()) {
        const bool wanted =
            options.effect.empty() ||
            ToUtf8(session.Effect(options.effect)->GetResourceData()->GetComponentName()) == effect;
        if (!wanted) continue;
        for (const std::string& name : presets::Names(effect)) {
            std::cout << fmt::format("{}\t{}\n", effect, name);
        }
    }
}

}  // namespace

void AddPresetCommand(CLI::App& program) {
    auto* preset = program.add_subcommand("preset", "Show, save and list stored parameter values");
    preset->require_subcommand(1);
    const auto add = [&](const char* name, const char* help, auto&& run) {
        auto* command = preset->add_subcommand(name, help);
        auto options = std::make_shared<SPresetOptions>();
        AddSessionOptions(*command, options->session);
        command->callback([options, run] { run(*options); });
        return std::pair(command, options);
    };
    const auto [show, show_options] =
        add("show", "Print the values of a preset, or the defaults of an effect, as JSON", &Show);
    show->add_option("EFFECT", show_options->effect, "Name of the effect")->required();
    show->add_option("NAME", show_options->name, "A saved preset or a preset file");

    const auto [save, save_options] = add("save", "Save values under a name", &Save);
    save->add_option("EFFECT", save_options->effect, "Name of the effect")->required();
    save->add_option("NAME", save_options->name, "Name of the preset")->required();
    save->add_flag("--overwrite", save_options->overwrite, "Replace a preset of this name");
    AddParameterOptions(*save, save_options->parameters);

    const auto [list, list_options] = add("list", "List the saved presets", &ListPresets);
    list->add_option("EFFECT", list_options->effect, "Only those of this effect");
}
