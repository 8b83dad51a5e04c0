#include "app/cli/Usage.h"

#include <algorithm>

#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"

namespace {

std::vector<std::string> OptionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    }
    return names;
}

std::vector<std::string> SubcommandNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* subcommand : command.get_subcommands(nullptr)) {
        if (!subcommand->get_group().empty()) names.push_back(subcommand->get_name());
    }
    return names;
}

std::string SeeHelp(const CLI::App& command) { return Tr("see \"{} --help\"", FullName(command)); }

std::string HintOr(const std::string& hint, const CLI::App& command) {
    return hint.empty() ? SeeHelp(command) : hint;
}

CCliError Unexpected(const CLI::App& command, const std::vector<std::string>& extras) {
    const std::string& first = extras.front();
    if (first.size() > 1 && first[0] == '-') {
        const std::string name = first.substr(0, first.find('='));
        return {EExit::Usage, Tr("unknown option {}", name),
                HintOr(DidYouMean(name, OptionNames(command)), command)};
    }
    const std::vector<std::string> subcommands = SubcommandNames(command);
    if (!subcommands.empty()) {
        return {EExit::Usage, Tr("unknown subcommand \"{}\"", first),
                HintOr(DidYouMean(first, subcommands), command)};
    }
    const bool is_one = extras.size() == 1;
    return {EExit::Usage,
            is_one ? Tr("unexpected argument: {}", first)
                   : Tr("unexpected arguments: {}", fmt::join(extras, " ")),
            Tr("a name with spaces is written in quotation marks; {}", SeeHelp(command))};
}

std::string Shown(const CLI::Option& option) {
    return option.get_positional() ? option.get_name(true) : option.get_name();
}

CCliError Missing(const CLI::App& command) {
    std::vector<std::string> missing;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_required() && option->count() == 0) missing.push_back(Shown(*option));
    }
    if (missing.empty()) {
        return {
            EExit::Usage, Tr("a subcommand is missing"),
            Tr("there are {}; {}", fmt::join(SubcommandNames(command), ", "), SeeHelp(command))};
    }
    return {EExit::Usage, Tr("missing: {}", fmt::join(missing, ", ")), SeeHelp(command)};
}

// An option was given without its value, or twice.
CCliError WrongCount(const CLI::App& command, const std::string& what) {
    const std::string name = what.substr(0, what.find_first_of(": "));
    const CLI::Option* option = command.get_option_no_throw(name);
    if (!option) return {EExit::Usage, what, SeeHelp(command)};
    if (option->get_type_size() == 0) {
        return {EExit::Usage, Tr("{} takes no value", name), SeeHelp(command)};
    }
    if (option->results().size() > 1) {
        return {EExit::Usage, Tr("{} is given more than once", name), SeeHelp(command)};
    }
    return {EExit::Usage, Tr("{} needs a value: {}", name, option->get_type_name()),
            SeeHelp(command)};
}

// The two options that "ONE requires OTHER" and "ONE excludes OTHER" name.
std::pair<std::string, std::string> Pair(const std::string& what, const std::string& verb) {
    const std::size_t at = what.find(verb);
    if (at == std::string::npos) return {what, ""};
    return {what.substr(0, at), what.substr(at + verb.size())};
}

}  // namespace

const CLI::App& ChosenCommand(const CLI::App& program) {
    const std::vector<CLI::App*> chosen = program.get_subcommands();
    return chosen.empty() ? program : ChosenCommand(*chosen.front());
}

std::string FullName(const CLI::App& command) {
    const CLI::App* parent = command.get_parent();
    return parent ? FullName(*parent) + ' ' + command.get_name() : command.get_name();
}

CCliError UsageError(const CLI::App& program, const CLI::ParseError& error) {
    const CLI::App& command = ChosenCommand(program);
    const std::string what = error.what();
    const bool is_required = dynamic_cast<const CLI::RequiredError*>(&error);
    if (is_required || dynamic_cast<const CLI::ExtrasError*>(&error)) {
        // A mistyped option says more than the required one that it was to be.
        const std::vector<std::string> extras = program.remaining(true);
        return extras.empty() ? Missing(command) : Unexpected(command, extras);
    }
    if (dynamic_cast<const CLI::ValidationError*>(&error)) {
        const std::size_t hint = what.find('\n');
        if (hint == std::string::npos) return {EExit::Usage, what, SeeHelp(command)};
        return {EExit::Usage, what.substr(0, hint), what.substr(hint + 1)};
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return WrongCount(command, what);
    if (dynamic_cast<const CLI::RequiresError*>(&error)) {
        const auto [one, other] = Pair(what, " requires ");
        return {EExit::Usage, Tr("{} is possible only together with {}", one, other),
                SeeHelp(command)};
    }
    if (dynamic_cast<const CLI::ExcludesError*>(&error)) {
        const auto [one, other] = Pair(what, " excludes ");
        return {EExit::Usage, Tr("{} and {} exclude each other", one, other), SeeHelp(command)};
    }
    return {EExit::Usage, what, SeeHelp(command)};
}
