#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/Commands.h"
#include "app/cli/EffectJson.h"
#include "app/cli/Options.h"

nlohmann::ordered_json EffectToJson(const CCmdEffect& command) {
    const ICmdResourceData& data = *command.GetResourceData();
    return {{"name", ToUtf8(data.GetComponentName())},
            {"displayName", ToUtf8(data.GetDisplayName())},
            {"englishName", ToUtf8(data.GetEnglishDisplayName())},
            {"guid", ToText(data.GetComponentGuid())},
            {"commandId", data.GetCommandId()},
            {"description", ToUtf8(data.GetTextC())}};
}

namespace {

struct SListOptions {
    SSessionOptions session;
    bool json = false;
};

void List(const SListOptions& options) {
    const CSession session(options.session);
    auto rows = nlohmann::ordered_json::array();
    for (const std::string& name : session.Module().Names()) {
        rows.push_back(EffectToJson(*session.Module().CreateCommand(name)));
    }
    if (options.json) {
        std::cout << rows.dump(2) << '\n';
        return;
    }
    for (const auto& row : rows) {
        std::cout << fmt::format("{:<14} {}\n", row["name"].get<std::string>(),
                                 row["description"].get<std::string>());
    }
}

}  // namespace

void AddListCommand(CLI::App& program) {
    auto* command = program.add_subcommand("list", "List the effects");
    auto options = std::make_shared<SListOptions>();
    command->add_flag("--json", options->json, "Print a JSON array");
    AddSessionOptions(*command, options->session);
    command->callback([options] { List(*options); });
}
