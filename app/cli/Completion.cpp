#include "app/cli/Completion.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <optional>

#include "app/cli/Options.h"
#include "app/imagefile/CImageFile.h"
#include "hostlib/language/Languages.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/ColourNames.h"
#include "hostlib/parameters/NearestName.h"

namespace completion {
namespace {

// What an option takes besides what its type name tells.
const std::map<std::string, std::vector<std::string>>& Choices() {
    static const auto choices = [] {
        std::map<std::string, std::vector<std::string>> made = {
            {"--format", {"png", "jpeg", "tiff", "webp"}}, {"--as", {"pattern", "texture"}}};
        for (const std::string& format : made["--format"]) {
            const imagefile::SWriteChoices of_kind = imagefile::ChoicesFor("x." + format);
            auto& compression = made["--compression"];
            compression.insert(compression.end(), of_kind.compression.begin(),
                               of_kind.compression.end());
            auto& subsampling = made["--subsampling"];
            subsampling.insert(subsampling.end(), of_kind.subsampling.begin(),
                               of_kind.subsampling.end());
        }
        return made;
    }();
    return choices;
}

class CCompleter {
  public:
    CCompleter(const CLI::App& program, const std::vector<std::string>& words)
        : command_(&program), current_(words.empty() ? "" : words.back()) {
        for (std::size_t i = 0; i + 1 < words.size(); ++i) Pass(words[i]);
    }

    void Complete() {
        if (expects_) return Offer(*expects_, "");
        const std::size_t equals = current_.find('=');
        if (current_.starts_with("--") && equals != std::string::npos) {
            const CLI::Option* option = command_->get_option_no_throw(current_.substr(0, equals));
            if (option) Offer(*option, current_.substr(0, equals + 1));
            return;
        }
        if (current_.starts_with('-')) return OfferOptions();
        OfferSubcommands();
        const auto positionals = Positionals();
        if (!positionals.empty()) {
            Offer(*positionals[std::min(arguments_, positionals.size() - 1)], "");
        }
    }

  private:
    // A word before the one that is being written.
    void Pass(const std::string& word) {
        if (expects_) {
            if (expects_->get_type_name() == "EFFECT") effect_ = word;
            if (expects_->check_name("--resources")) folders_.push_back(word);
            expects_ = nullptr;
        } else if (word.size() > 1 && word[0] == '-') {
            const CLI::Option* option = command_->get_option_no_throw(word);
            if (option && option->get_type_size() != 0) expects_ = option;
        } else if (command_->get_name() != "help" && Subcommand(word)) {
            command_ = Subcommand(word);
        } else {
            const auto positionals = Positionals();
            if (arguments_ < positionals.size() && positionals[arguments_]->check_name("EFFECT")) {
                effect_ = word;
            }
            ++arguments_;
        }
    }

    const CLI::App* Subcommand(const std::string& name) const {
        for (const CLI::App* subcommand : command_->get_subcommands(nullptr)) {
            if (subcommand->get_name() == name) return subcommand;
        }
        return nullptr;
    }

    std::vector<const CLI::Option*> Positionals() const {
        return command_->get_options(
            [](const CLI::Option* option) { return option->get_positional(); });
    }

    void Say(const std::string& candidate, std::string_view description) const {
        if (!LooselyBegins(candidate)) return;
        std::string line = candidate + '\t';
        for (const char c : description) line += c == '\n' || c == '\t' ? ' ' : c;
        std::cout << line << '\n';
    }
    bool LooselyBegins(const std::string& candidate) const {
        return SameName(candidate.substr(0, current_.size()), current_);
    }
    void AskShell(const char* what) const { std::cout << what << '\n'; }

    void OfferOptions() const {
        for (const CLI::Option* option : command_->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                Say("--" + name, texts::Translation(option->get_description()));
            }
        }
    }

    void OfferSubcommands() const {
        for (const CLI::App* subcommand : command_->get_subcommands(nullptr)) {
            Say(subcommand->get_name(), texts::Translation(subcommand->get_description()));
        }
    }

    const CJobLibrary& Library() {
        if (!library_) {
            std::erase_if(folders_, [](const std::string& folder) {
                return !std::filesystem::is_directory(folder);
            });
            library_.emplace(OpenJobs({}, folders_));
        }
        return *library_;
    }

    // The values of an option or argument, each with `before` in front of it.
    void Offer(const CLI::Option& option, const std::string& before) {
        const auto choices = Choices().find(option.get_name());
        if (choices != Choices().end()) {
            for (const std::string& choice : choices->second) Say(before + choice, "");
            return;
        }
        const std::string type = option.get_positional() && option.get_type_name() == "TEXT"
                                     ? option.get_name(true)
                                     : option.get_type_name();
        if (type == "EFFECT") {
            for (const SEffectInfo& effect : Library().Effects()) {
                Say(before + effect.name, effect.display_name);
            }
        } else if (type == "NAME=VALUE") {
            OfferParameters(before);
        } else if (type == "PRESET") {
            OfferPresets(before);
        } else if (type == "CODE") {
            for (const std::string& code : languages::Available(Library().Installation().data)) {
                Say(before + code, "");
            }
        } else if (type == "SUBCOMMAND") {
            for (const CLI::App* other : command_->get_parent()->get_subcommands(nullptr)) {
                Say(other->get_name(), texts::Translation(other->get_description()));
            }
        } else if (type == "NAME" && option.get_positional()) {
            OfferPictures(0, before);
        } else if (type == "DIR") {
            AskShell(":folders");
        } else if (type == "IN" || type == "OUT" || type == "FILE" || type == "PHOTO" ||
                   type == "TEMPLATE" || type.starts_with("INPUT") || type.starts_with("LOG")) {
            AskShell(":files");
        }
    }

    void OfferPresets(const std::string& before) {
        if (!effect_.empty()) {
            for (const presets::SPreset& preset : Library().Presets(effect_)) {
                Say(before + preset.id, preset.name);
            }
        }
        const bool takes_files = command_->get_name() != "delete" &&
                                 command_->get_name() != "rename" &&
                                 command_->get_name() != "export";
        if (takes_files) AskShell(":files");
    }

    // Patterns, textures or, for 0, both.
    void OfferPictures(int type, const std::string& before) {
        for (const int kind : {CFileResourceLibrary::kPatterns, CFileResourceLibrary::kTextures}) {
            if (type != 0 && type != kind) continue;
            for (const auto& file : Library().Resources().Files(kind)) {
                Say(before + file.name, file.category);
            }
        }
    }

    void OfferParameters(const std::string& before) {
        if (effect_.empty()) return;
        const std::size_t equals = current_.find('=', before.size());
        for (const SParameterInfo& parameter :
             Library().Describe(Library().Find(effect_)).parameters) {
            if (equals == std::string::npos) {
                Say(before + parameter.name + '=', parameter.label);
            } else if (SameName(current_.substr(before.size(), equals - before.size()),
                                parameter.name)) {
                OfferValues(parameter, current_.substr(0, equals + 1));
            }
        }
    }

    void OfferValues(const SParameterInfo& parameter, const std::string& before) {
        for (const std::string& member : parameter.members) Say(before + member, "");
        if (parameter.type == EParameterType::Boolean) {
            Say(before + "true", "");
            Say(before + "false", "");
        } else if (parameter.type == EParameterType::Colour) {
            for (const std::string& name : ColourNames()) Say(before + name, "");
        } else if (parameter.resource_type != 0) {
            OfferPictures(parameter.resource_type, before);
        } else if (parameter.type == EParameterType::Integer) {
            Say(before + parameter.default_text, parameter.accepts);
        }
    }

    const CLI::App* command_;
    std::string current_, effect_;
    const CLI::Option* expects_ = nullptr;  // the option whose value comes next
    std::size_t arguments_ = 0;             // how many arguments of the subcommand have passed
    std::vector<std::string> folders_;
    std::optional<CJobLibrary> library_;
};

}  // namespace

bool IsAsked(const std::vector<std::string>& arguments) {
    return arguments.size() > 1 && arguments[0] == "complete" && arguments[1] == "--";
}

void Complete(const CLI::App& program, const std::vector<std::string>& words) {
    CCompleter(program, words).Complete();
}

}  // namespace completion
