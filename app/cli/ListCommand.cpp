#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"

namespace {

struct SListOptions {
    SSessionOptions session;
    bool json = false;
};

void List(const SListOptions& options) {
    const std::vector<SEffectInfo> effects = OpenJobs(options.session).Effects();
    if (options.json) {
        auto rows = nlohmann::ordered_json::array();
        for (const SEffectInfo& effect : effects) rows.push_back(IdentityToJson(effect));
        return report::Print(rows);
    }
    for (const SEffectInfo& effect : effects) {
        std::cout << fmt::format("{:<14} {}\n", effect.name, effect.description);
    }
}

}  // namespace

void AddListCommand(CLI::App& program) {
    auto* command = program.add_subcommand("list", "List the effects");
    auto options = std::make_shared<SListOptions>();
    AddJsonOption(*command, options->json);
    AddSessionOptions(*command, options->session);
    command->callback([options] { List(*options); });
}
