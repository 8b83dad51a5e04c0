#include "app/cli/CHelpFormatter.h"

#include <unistd.h>

#include <algorithm>

#include "app/cli/Terminal.h"
#include "hostlib/language/Texts.h"

namespace {

constexpr int kDescriptions = 28;  // the column that they begin at
constexpr int kNarrowest = 50, kWidest = 100;

int Width() { return std::clamp(TerminalColumns(STDOUT_FILENO), kNarrowest, kWidest); }

std::string Translated(const std::string& english) {
    return std::string(texts::Translation(english));
}

std::string Spaces(int count) {
    return std::string(static_cast<std::size_t>(std::max(count, 0)), ' ');
}

std::string Row(const std::string& name, const std::string& description) {
    std::string row = "  " + name;
    const int gap = kDescriptions - ColumnsOf(row);
    row += gap >= 2 ? Spaces(gap) : '\n' + Spaces(kDescriptions);
    return row + Wrapped(description, Width(), kDescriptions, kDescriptions) + '\n';
}

bool IsRepeatable(const CLI::Option& option) {
    return option.get_items_expected_max() >= CLI::detail::expected_max_vector_size;
}

std::string NameOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true);
    std::string name = option.get_name(false, true);
    const auto comma = name.find(',');
    if (comma != std::string::npos) name.insert(comma + 1, " ");
    return option.get_type_size() == 0 ? name : name + ' ' + option.get_type_name();
}

// What is told of an option after its description, in parentheses.
std::string DescriptionOf(const CLI::Option& option) {
    std::string text = Translated(option.get_description());
    std::vector<std::string> notes;
    if (!option.get_default_str().empty()) {
        notes.push_back(Tr("default: {}", option.get_default_str()));
    }
    for (const CLI::Option* needed : option.get_needs()) {
        notes.push_back(Tr("only with {}", needed->get_name()));
    }
    for (const CLI::Option* excluded : option.get_excludes()) {
        notes.push_back(Tr("not with {}", excluded->get_name()));
    }
    if (option.get_required() && option.nonpositional()) notes.push_back(Tr("required"));
    if (IsRepeatable(option)) notes.push_back(Tr("may be repeated"));
    if (!notes.empty()) text += fmt::format(" ({})", fmt::join(notes, ", "));
    return text;
}

std::vector<const CLI::Option*> Options(const CLI::App& app, bool positional) {
    return app.get_options([&](const CLI::Option* option) {
        return option->get_positional() == positional && !option->get_group().empty();
    });
}

std::string Usage(const CLI::App& app, const std::string& name,
                  const std::vector<const CLI::App*>& subcommands) {
    std::string usage = Tr("Usage: {}", name);
    const int indent = std::min(ColumnsOf(usage) + 1, kDescriptions);
    std::string rest;
    const bool has_subcommands = !subcommands.empty();
    if (has_subcommands) {
        const bool is_needed = app.get_require_subcommand_min() > 0 || !app.get_parent();
        rest += is_needed ? Tr("SUBCOMMAND ...") : Tr("[SUBCOMMAND ...]");
    }
    for (const CLI::Option* option : Options(app, true)) {
        const std::string shown = option->get_name(true) + (IsRepeatable(*option) ? "..." : "");
        rest += ' ' + (option->get_required() ? shown : '[' + shown + ']');
    }
    for (const CLI::Option* option : Options(app, false)) {
        if (option->get_required()) {
            const std::string names = option->get_name(false, true);
            rest += ' ' + names.substr(0, names.find(',')) + ' ' + option->get_type_name();
        }
    }
    rest += ' ' + Tr("[OPTIONS]");
    return usage + ' ' + Wrapped(rest, Width(), indent, ColumnsOf(usage) + 1) + "\n";
}

}  // namespace

std::string CHelpFormatter::make_help(const CLI::App* app, std::string name,
                                      CLI::AppFormatMode /*mode*/) const {
    const auto subcommands = app->get_subcommands(
        [](const CLI::App* subcommand) { return !subcommand->get_group().empty(); });
    std::string help = Wrapped(Translated(app->get_description()), Width(), 0, 0) + "\n\n" +
                       Usage(*app, name, subcommands);
    if (!subcommands.empty()) help += '\n' + Tr("Subcommands:") + '\n';
    for (const CLI::App* subcommand : subcommands) {
        help += Row(subcommand->get_name(), Translated(subcommand->get_description()));
    }
    const auto section = [&](bool positional, const std::string& title) {
        const auto options = Options(*app, positional);
        if (!options.empty()) help += '\n' + title + '\n';
        for (const CLI::Option* option : options)
            help += Row(NameOf(*option), DescriptionOf(*option));
    };
    section(true, Tr("Arguments:"));
    section(false, Tr("Options:"));
    const std::string footer = Translated(app->get_footer());
    if (!footer.empty()) help += '\n' + Wrapped(footer, Width(), 0, 0) + '\n';
    return help;
}
