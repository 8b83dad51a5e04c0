#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "hostlib/system/CFileError.h"

namespace {

struct SPresetOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    std::string effect, name;
    bool overwrite = false;
    bool json = false;
};

// A job with the values: the defaults, with what the user gave over them.
CEffectJob JobFor(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    return MakeJob(library, EffectName(library, options.effect), options.parameters);
}

void Show(SPresetOptions options) {
    if (!options.name.empty()) options.parameters.preset = options.name;
    std::cout << JobFor(options).Values().dump(2) << '\n';
}

void Save(const SPresetOptions& options) {
    std::cout << DisplayText(SavePreset(JobFor(options), options.name, options.overwrite)) << '\n';
}

void ListPresets(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::vector<std::string> effects =
        options.effect.empty() ? library.Names() : std::vector{EffectName(library, options.effect)};
    auto rows = nlohmann::ordered_json::array();
    for (const std::string& effect : effects) {
        for (const presets::SPreset& preset : library.Presets(effect)) {
            if (!options.json) {
                std::cout << fmt::format("{}\t{}{}\n", effect, DisplayText(preset.id),
                                         preset.ships ? '\t' + preset.name : "");
            }
            rows.push_back({{"effect", effect},
                            {"name", preset.id},
                            {"displayName", preset.name},
                            {"description", preset.description},
                            {"ships", preset.ships},
                            {"file", preset.file.string()}});
        }
    }
    // File names are bytes: what is not UTF-8 in them is replaced.
    if (options.json) {
        std::cout << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
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
    show->add_option("NAME", show_options->name, "A preset by name, or a preset file");

    const auto [save, save_options] = add("save", "Save values under a name", &Save);
    save->add_option("EFFECT", save_options->effect, "Name of the effect")->required();
    save->add_option("NAME", save_options->name, "Name of the preset")->required();
    save->add_flag("--overwrite", save_options->overwrite, "Replace a preset of this name");
    AddParameterOptions(*save, save_options->parameters);

    const auto [list, list_options] =
        add("list", "List the presets: the saved ones and those that ship", &ListPresets);
    list->add_option("EFFECT", list_options->effect, "Only those of this effect");
    list->add_flag("--json", list_options->json, "Print a JSON array");
}
