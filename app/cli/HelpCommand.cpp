#include <iostream>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/cli/Usage.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"

namespace {

struct SHelpOptions {
    SSessionOptions session;
    std::vector<std::string> words;
};

void Help(const CLI::App& program, const std::vector<std::string>& words) {
    const CLI::App* command = &program;
    for (const std::string& word : words) {
        std::vector<std::string> names;
        const CLI::App* next = nullptr;
        for (const CLI::App* subcommand : command->get_subcommands(nullptr)) {
            if (subcommand->get_group().empty()) continue;
            names.push_back(subcommand->get_name());
            if (names.back() == word) next = subcommand;
        }
        if (!next) {
            throw CCliError(EExit::Usage, Tr("unknown subcommand \"{}\"", word),
                            DidYouMean(word, names));
        }
        command = next;
    }
    std::cout << command->get_formatter()->make_help(command, FullName(*command),
                                                     CLI::AppFormatMode::Normal);
}

}  // namespace

void AddHelpCommand(CLI::App& program) {
    auto* command = program.add_subcommand("help", "Show what a subcommand does, and its options");
    auto options = std::make_shared<SHelpOptions>();
    command->add_option("SUBCOMMAND", options->words, "Subcommand; without it, the program");
    AddSessionOptions(*command, options->session);
    command->callback([&program, options] { Help(program, options->words); });
}
