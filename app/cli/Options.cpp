#include "app/cli/Options.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "app/cli/CliError.h"
#include "hostlib/job/ParameterValues.h"
#include "hostlib/job/Presets.h"

namespace {

std::filesystem::path PresetFile(const std::string& effect, const std::string& preset) {
    std::error_code none;
    if (std::filesystem::exists(preset, none)) return preset;
    const bool is_name = preset.find('/') == std::string::npos;
    if (is_name && std::filesystem::exists(presets::FileOf(effect, preset), none)) {
        return presets::FileOf(effect, preset);
    }
    return preset;
}

void SetOne(IParameterRepository& repository, const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
        throw CCliError(EExit::Usage, fmt::format("-p {}: expected NAME=VALUE", assignment));
    }
    parameters::SetFromText(parameters::Find(repository, assignment.substr(0, equals)),
                            assignment.substr(equals + 1));
}

}  // namespace

void AddSessionOptions(CLI::App& command, SSessionOptions& options) {
    command.add_option("--language", options.language,
                       "Language of names and descriptions, by code (EN, DE); default: the "
                       "environment's");
    command
        .add_option("--range-scale", options.range_scale,
                    "Enlarge the scalable maxima of parameters by PERCENT")
        ->type_name("PERCENT")
        ->check(CLI::Range(-99, 900));
}

void AddParameterOptions(CLI::App& command, SParameterOptions& options) {
    command
        .add_option("-p,--parameter", options.values,
                    "Set a parameter; \"cmdtexture describe EFFECT\" lists them")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--preset", options.preset,
                    "Take values from a preset: a JSON file, or the name of a saved one")
        ->type_name("FILE");
}

void SetParameters(IParameterRepository& repository, const std::string& effect,
                   const SParameterOptions& options) {
    try {
        if (!options.preset.empty()) {
            parameters::SetFromJson(repository, presets::Read(PresetFile(effect, options.preset)));
        }
        for (const std::string& assignment : options.values) SetOne(repository, assignment);
    } catch (const parameters::CRefused& refused) {
        throw CCliError(EExit::Usage, refused.what(),
                        refused.Hint().empty()
                            ? fmt::format("\"cmdtexture describe {}\" lists the parameters", effect)
                            : refused.Hint());
    } catch (const CNException& error) {
        throw CCliError(EExit::Usage, error.what());
    }
}

void CheckParameters(const CSession& session, const CFileResourceLibrary& library,
                     const std::string& effect, const SParameterOptions& options) {
    const TRef<CCmdEffect> command = session.Effect(effect);
    PrepareCommand(*command, nullptr);
    SetParameters(*command->BoundRepository(), effect, options);
    CheckResourceNames(*command->BoundRepository(), library);
}
