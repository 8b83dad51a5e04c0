#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/imagefile/CImageFile.h"

namespace {

using nlohmann::ordered_json;

struct SResourcesOptions {
    SSessionOptions session;
    std::vector<std::string> folders;
    bool json = false;
};

// The size of a picture, of which one that is not there, or damaged, has none.
std::optional<CSize> SizeOf(const std::filesystem::path& file) {
    try {
        return imagefile::ReadHeader(file).size;
    } catch (const imagefile::CImageFileError&) {
        return std::nullopt;
    }
}

void List(const SResourcesOptions& options) {
    const auto library = OpenPictures(options.folders);
    auto rows = ordered_json::array();
    for (const auto& [type, kind] : {std::pair(CFileResourceLibrary::kPatterns, "pattern"),
                                     std::pair(CFileResourceLibrary::kTextures, "texture")}) {
        for (const auto& entry : library->Files(type)) {
            const std::optional<CSize> size = SizeOf(entry.file);
            rows.push_back({{"kind", kind},
                            {"name", entry.name},
                            {"category", entry.category},
                            {"width", size ? ordered_json(size->cx) : ordered_json()},
                            {"height", size ? ordered_json(size->cy) : ordered_json()},
                            {"file", entry.file.string()}});
        }
    }
    if (options.json) {
        std::cout << rows.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
        return;
    }
    for (const auto& row : rows) {
        const std::string size =
            row["width"].is_null()
                ? "cannot be read"
                : fmt::format("{} x {}", row["width"].get<int>(), row["height"].get<int>());
        std::cout << fmt::format("{:<8} {:<20} {:<12} {}\n", row["kind"].get<std::string>(),
                                 row["name"].get<std::string>(), row["category"].get<std::string>(),
                                 size);
    }
}

}  // namespace

void AddResourcesCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "resources", "List the patterns of Sculpture and the textures of Texture");
    auto options = std::make_shared<SResourcesOptions>();
    command->add_flag("--json", options->json, "Print a JSON array");
    AddLibraryOption(*command, options->folders);
    command->callback([options] { List(*options); });
}
