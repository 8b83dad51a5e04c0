#include "app/cli/Options.h"

void AddSessionOptions(CLI::App& command, SSessionOptions& options) {
    command.add_option("--language", options.language,
                       "Language of names and descriptions, by its code, such as EN; default: the "
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
        .add_option(
            "--preset", options.preset,
            "Take values from a preset: its name (\"cmdtexture preset list\"), or a JSON file")
        ->type_name("FILE");
}

void AddWorkOptions(CLI::App& command, SWorkOptions& options) {
    command.add_option("EFFECT", options.effect, "Name of the effect; none with --recipe");
    AddParameterOptions(command, options.parameters);
    command
        .add_option("--recipe", options.recipe,
                    "Take the steps of a recipe, a JSON file, instead of one effect")
        ->type_name("FILE")
        ->excludes("--parameter")
        ->excludes("--preset");
}

void AddLibraryOption(CLI::App& command, std::vector<std::string>& folders) {
    command
        .add_option("--resources", folders,
                    "Look for patterns and textures here, too: a folder with patterns/ and "
                    "textures/, or of pictures")
        ->type_name("DIR")
        ->allow_extra_args(false);
}
