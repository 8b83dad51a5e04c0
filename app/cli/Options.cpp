#include "app/cli/Options.h"

#include <algorithm>
#include <string_view>

#include "hostlib/core/WholeNumber.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"

void AddLanguageOption(CLI::App& command, std::string& language) {
    command
        .add_option("--language", language,
                    "Language of texts and messages, by its code, such as EN; default: the "
                    "environment's")
        ->type_name("CODE");
}

void AddSessionOptions(CLI::App& command, SSessionOptions& options) {
    AddLanguageOption(command, options.language);
    command
        .add_option("--range-scale", options.range_scale,
                    "Enlarge the scalable maxima of parameters by PERCENT")
        ->type_name("PERCENT")
        ->check(WholeNumbers(-99, 900));
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
        ->type_name("PRESET");
}

void AddWorkOptions(CLI::App& command, SWorkOptions& options) {
    command.add_option("EFFECT", options.effect,
                       "Name of the effect, in any language; none with --recipe");
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

CLI::Option* AddEffectArgument(CLI::App& command, std::string& effect) {
    return command
        .add_option("EFFECT", effect, "Name of the effect, in any language (\"cmdtexture list\")")
        ->required();
}

void AddJsonOption(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "Print results, warnings and errors as JSON");
}

CLI::Validator WholeNumbers(std::int64_t least, std::int64_t most) {
    return {[=](std::string& text) {
                const auto number = WholeNumber(text);
                if (number && least <= *number && *number <= most) return std::string();
                return Tr("{} is not a whole number from {} to {}", text, least, most);
            },
            ""};
}

CLI::Validator Seconds() {
    return {[](std::string& text) {
                constexpr double kMost = 1e8;
                double seconds = -1;
                const bool is_number = CLI::detail::lexical_cast(text, seconds);
                if (is_number && seconds >= 0 && seconds <= kMost) return std::string();
                return Tr("{} is not a number of seconds", text);
            },
            ""};
}

CLI::Validator OneOf(std::vector<std::string> names) {
    return {[names = std::move(names)](std::string& text) {
                if (std::find(names.begin(), names.end(), text) != names.end()) {
                    return std::string();
                }
                const std::string hint = DidYouMean(text, names);
                return Tr("{} is none of {}", text, fmt::join(names, ", ")) +
                       (hint.empty() ? "" : '\n' + hint);
            },
            ""};
}

CLI::Validator Bytes() {
    return {[convert = CLI::AsSizeValue(false)](std::string& text) {
                const std::string given = text;
                try {
                    if (convert(text).empty()) return std::string();
                } catch (const CLI::ValidationError&) {  // told below
                }
                return Tr("{} is not a size; it is written 512M or 1G", given);
            },
            ""};
}

SCommandLine ReadCommandLine(int count, const char* const* arguments) {
    constexpr std::string_view kLanguage = "--language";
    SCommandLine line;
    std::vector<std::string> early;
    int at = 1;
    for (; at < count && std::string_view(arguments[at]) != "--"; ++at) {
        const std::string argument = arguments[at];
        if (argument == "--json") {
            line.json = true;
        } else if (argument == kLanguage && at + 1 < count) {
            line.language = arguments[++at];
            early.push_back(argument);
        } else if (argument.starts_with(kLanguage) && argument[kLanguage.size()] == '=') {
            line.language = argument.substr(kLanguage.size() + 1);
        } else {
            line.arguments.push_back(argument);
            continue;
        }
        early.emplace_back(arguments[at]);
    }
    line.arguments.insert(line.arguments.end(), early.begin(), early.end());
    line.arguments.insert(line.arguments.end(), arguments + at, arguments + count);
    return line;
}
