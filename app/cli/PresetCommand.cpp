#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"
#include "host/core/CErrorAutoThrow.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/parameters/Presets.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/COutputFile.h"

namespace {

using nlohmann::ordered_json;

struct SPresetOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    std::string effect, name, new_name, file;
    bool overwrite = false;
    bool json = false;
};

// A job with the values: the defaults, with what the user gave over them.
CEffectJob JobFor(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    return MakeJob(library, EffectName(library, options.effect), options.parameters);
}

// Runs an operation on the user's presets, whose errors are those of an output.
template <class Operation>
auto WithCliErrors(Operation&& operation) {
    try {
        return operation();
    } catch (const CNException& error) {
        const bool is_name = error.Code() == TolmErrorCode::UnusableInput;
        throw CCliError(is_name ? EExit::Usage : EExit::Output, error.what());
    } catch (const CFileError& error) {
        throw CCliError(EExit::Output, error.what(), error.Hint());
    }
}

// The preset that the user means.
presets::SPreset Find(const CJobLibrary& library, const std::string& effect,
                      const std::string& name) {
    std::vector<presets::SPreset> known = library.Presets(effect);
    for (presets::SPreset& preset : known) {
        const bool same = preset.ships ? SameName(preset.id, name) || SameName(preset.name, name)
                                       : preset.id == name;
        if (same) return std::move(preset);
    }
    throw CCliError(EExit::Usage, Tr("there is no preset \"{}\" of {}", name, effect),
                    presets::Hint(name, known));
}

// The same, of those that the user saved.
presets::SPreset FindOwn(const CJobLibrary& library, const std::string& effect,
                         const std::string& name) {
    presets::SPreset preset = Find(library, effect, name);
    if (!preset.ships) return preset;
    throw CCliError(EExit::Usage, Tr("\"{}\" ships with the program, and stays as it is", name),
                    Tr("\"cmdtexture preset save\" makes one of your own"));
}

void Tell(const SPresetOptions& options, const std::string& effect, const std::string& name,
          const std::string& file) {
    if (options.json) {
        report::PrintDone({{"effect", effect}, {"name", name}, {"file", file}});
    } else {
        std::cout << DisplayText(file) << '\n';
    }
}

void Show(SPresetOptions options) {
    if (!options.name.empty()) options.parameters.preset = options.name;
    report::Print(JobFor(options).Values());
}

void Save(const SPresetOptions& options) {
    const CEffectJob job = JobFor(options);
    Tell(options, job.Name(), options.name, SavePreset(job, options.name, options.overwrite));
}

void Delete(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::string effect = EffectName(library, options.effect);
    const presets::SPreset preset = FindOwn(library, effect, options.name);
    WithCliErrors([&] { presets::Remove(effect, preset.id); });
    Tell(options, effect, preset.id, preset.file);
}

// Saves values that were read from a file, as they stand there, under a name.
std::string Store(const std::string& effect, const std::string& name, const ordered_json& values,
                  bool overwrite) {
    return WithCliErrors([&] {
        const std::filesystem::path file = presets::FileOf(effect, name);
        std::error_code none;
        if (!overwrite && std::filesystem::exists(file, none)) {
            throw CCliError(EExit::Output, Tr("{}: a preset of this name exists", file.string()),
                            Tr("--overwrite replaces an existing preset"));
        }
        return presets::Save(effect, name, values, overwrite).string();
    });
}

void Rename(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::string effect = EffectName(library, options.effect);
    const presets::SPreset preset = FindOwn(library, effect, options.name);
    if (preset.id == options.new_name) {
        throw CCliError(EExit::Usage, Tr("the preset is called \"{}\" already", preset.id));
    }
    const ordered_json values = WithCliErrors([&] { return presets::Read(preset.file); });
    const std::string file = Store(effect, options.new_name, values, options.overwrite);
    WithCliErrors([&] { presets::Remove(effect, preset.id); });
    Tell(options, effect, options.new_name, file);
}

void Import(SPresetOptions options) {
    const std::string file = options.file;
    options.parameters.preset = std::filesystem::path(file).has_parent_path() ? file : "./" + file;
    const CEffectJob checked = JobFor(options);  // refuses what the effect does not take
    if (options.name.empty()) options.name = std::filesystem::path(file).stem();
    const ordered_json values = WithCliErrors([&] { return presets::Read(file); });
    Tell(options, checked.Name(), options.name,
         Store(checked.Name(), options.name, values, options.overwrite));
}

void Export(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::string effect = EffectName(library, options.effect);
    const presets::SPreset preset = Find(library, effect, options.name);
    const ordered_json values = WithCliErrors([&] { return presets::Read(preset.file); });
    if (options.file.empty()) return report::Print(values);
    WithCliErrors([&] {
        const std::string text = values.dump(2) + '\n';
        COutputFile out(options.file, {.overwrite = options.overwrite, .input = {}});
        out.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        out.Publish();
    });
    Tell(options, effect, preset.id, options.file);
}

void ListPresets(const SPresetOptions& options) {
    const CJobLibrary library = OpenJobs(options.session);
    const std::vector<std::string> effects =
        options.effect.empty() ? library.Names() : std::vector{EffectName(library, options.effect)};
    auto rows = ordered_json::array();
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
    if (options.json) report::Print(rows);
}

}  // namespace

void AddPresetCommand(CLI::App& program) {
    auto* preset =
        program.add_subcommand("preset", "Show, save, list and move stored values of parameters");
    preset->require_subcommand(1);
    const auto complete = [](CLI::App* command, auto&& run) {
        auto options = std::make_shared<SPresetOptions>();
        AddJsonOption(*command, options->json);
        AddSessionOptions(*command, options->session);
        command->callback([options, run] { run(*options); });
        return options;
    };
    const auto add_name = [](CLI::App& command, SPresetOptions& options) {
        return command.add_option("NAME", options.name, "Name of the preset")->type_name("PRESET");
    };
    const auto add_overwrite = [](CLI::App& command, SPresetOptions& options) {
        command.add_flag("--overwrite", options.overwrite, "Replace what has this name");
    };

    auto* list =
        preset->add_subcommand("list", "List the presets: the saved ones and those that ship");
    const auto list_options = complete(list, &ListPresets);
    list->add_option("EFFECT", list_options->effect, "Only those of this effect");

    auto* show = preset->add_subcommand(
        "show", "Print the values of a preset, or the defaults of an effect, as JSON");
    const auto show_options = complete(show, &Show);
    AddEffectArgument(*show, show_options->effect);
    show->add_option("NAME", show_options->name, "A preset by name, or a preset file")
        ->type_name("PRESET");

    auto* save = preset->add_subcommand("save", "Save values under a name");
    const auto save_options = complete(save, &Save);
    AddEffectArgument(*save, save_options->effect);
    add_name(*save, *save_options)->required();
    AddParameterOptions(*save, save_options->parameters);
    add_overwrite(*save, *save_options);

    auto* remove = preset->add_subcommand("delete", "Delete a preset that you saved");
    const auto remove_options = complete(remove, &Delete);
    AddEffectArgument(*remove, remove_options->effect);
    add_name(*remove, *remove_options)->required();

    auto* rename = preset->add_subcommand("rename", "Give a preset that you saved another name");
    const auto rename_options = complete(rename, &Rename);
    AddEffectArgument(*rename, rename_options->effect);
    add_name(*rename, *rename_options)->required();
    rename->add_option("NEW", rename_options->new_name, "Its new name")->required();
    add_overwrite(*rename, *rename_options);

    auto* import = preset->add_subcommand("import", "Save the values of a preset file");
    const auto import_options = complete(import, &Import);
    AddEffectArgument(*import, import_options->effect);
    import->add_option("FILE", import_options->file, "The preset file")->required();
    import->add_option("--name", import_options->name, "Name of the preset; default: the file's")
        ->type_name("NAME");
    add_overwrite(*import, *import_options);

    auto* to_file = preset->add_subcommand("export", "Write a preset to a file of its own");
    const auto export_options = complete(to_file, &Export);
    AddEffectArgument(*to_file, export_options->effect);
    add_name(*to_file, *export_options)->required();
    to_file
        ->add_option("-o,--output", export_options->file, "File to write; default: standard output")
        ->type_name("FILE");
    add_overwrite(*to_file, *export_options);
}
