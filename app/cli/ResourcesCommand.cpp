#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/cli/Pictures.h"
#include "app/cli/Report.h"
#include "app/imagefile/CImageFile.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/system/CFileError.h"

namespace {

using nlohmann::ordered_json;

struct SResourcesOptions {
    SSessionOptions session;
    std::vector<std::string> folders;
    bool json = false;
    // of add, remove and show
    SInputOptions photo;
    std::string as, category = "own", name;
    bool seamless = false, overwrite = false;
};

constexpr std::pair<int, const char*> kKinds[] = {{CFileResourceLibrary::kPatterns, "pattern"},
                                                  {CFileResourceLibrary::kTextures, "texture"}};

// The size of a picture, of which one that is not there, or damaged, has none.
std::optional<CSize> SizeOf(const std::filesystem::path& file) {
    try {
        return imagefile::ReadHeader(file).size;
    } catch (const imagefile::CImageFileError&) {
        return std::nullopt;
    }
}

ordered_json RowOf(const char* kind, const CFileResourceLibrary::SFile& entry) {
    const std::optional<CSize> size = SizeOf(entry.file);
    return {{"kind", kind},
            {"name", entry.name},
            {"category", entry.category},
            {"width", size ? ordered_json(size->cx) : ordered_json()},
            {"height", size ? ordered_json(size->cy) : ordered_json()},
            {"own", user_resources::Holds(entry.file)},
            {"file", entry.file.string()}};
}

void List(const SResourcesOptions& options) {
    const auto library = OpenPictures(options.folders);
    auto rows = ordered_json::array();
    for (const auto& [type, kind] : kKinds) {
        for (const auto& entry : library->Files(type)) rows.push_back(RowOf(kind, entry));
    }
    if (options.json) return report::Print(rows);
    for (const auto& row : rows) {
        const std::string size =
            row["width"].is_null()
                ? Tr("cannot be read")
                : fmt::format("{} x {}", row["width"].get<int>(), row["height"].get<int>());
        std::cout << fmt::format("{:<8} {:<20} {:<12} {}\n", row["kind"].get<std::string>(),
                                 DisplayText(row["name"].get<std::string>()),
                                 DisplayText(row["category"].get<std::string>()), size);
    }
}

void Add(const SResourcesOptions& options) {
    const std::string stem = std::filesystem::path(options.photo.file).stem();
    const user_resources::SNewResource wanted{.type = options.as == "pattern"
                                                          ? CFileResourceLibrary::kPatterns
                                                          : CFileResourceLibrary::kTextures,
                                              .name = options.name.empty() ? stem : options.name,
                                              .category = options.category,
                                              .seamless = options.seamless,
                                              .overwrite = options.overwrite};
    CProgress progress(CProgress::StyleFor(false, false));
    progress.BeginPart(Tr("reading"), 0.5);
    const CRowIteratorBands photo = ReadPicture(options.photo, progress).pixels;
    const std::string file = AddResource(photo, wanted);
    if (!options.json) {
        std::cout << file << '\n';
        return;
    }
    report::PrintDone(RowOf(options.as == "pattern" ? "pattern" : "texture",
                            {wanted.name, wanted.category, file}));
}

// The pictures of a name; of one kind where --as tells it.
std::vector<std::pair<const char*, CFileResourceLibrary::SFile>> Named(
    const SResourcesOptions& options) {
    const auto library = OpenPictures(options.folders);
    std::vector<std::string> names;
    std::vector<std::pair<const char*, CFileResourceLibrary::SFile>> found;
    for (const auto& [type, kind] : kKinds) {
        if (!options.as.empty() && options.as != kind) continue;
        if (const auto file = library->Find(type, options.name)) found.emplace_back(kind, *file);
        for (const auto& file : library->Files(type)) names.push_back(file.name);
    }
    if (!found.empty()) return found;
    const char* const what = options.as.empty() ? TrLater("there is no pattern or texture \"{}\"")
                             : options.as == "pattern" ? TrLater("there is no pattern \"{}\"")
                                                       : TrLater("there is no texture \"{}\"");
    std::string hint = DidYouMean(options.name, names);
    if (!hint.empty()) hint += ' ';
    throw CCliError(EExit::Usage, texts::Format(what, fmt::make_format_args(options.name)),
                    hint + Tr("\"cmdtexture resources\" lists them"));
}

void Show(const SResourcesOptions& options) {
    auto rows = ordered_json::array();
    for (const auto& [kind, file] : Named(options)) rows.push_back(RowOf(kind, file));
    report::Print(rows);
}

void Remove(const SResourcesOptions& options) {
    const auto found = Named(options);
    if (found.size() > 1) {
        throw CCliError(EExit::Usage, Tr("there is a pattern and a texture \"{}\"", options.name),
                        Tr("--as pattern or --as texture says which"));
    }
    const ordered_json row = RowOf(found[0].first, found[0].second);
    RemoveResource(found[0].second.file);
    if (options.json) return report::PrintDone(row);
    std::cout << found[0].second.file.string() << '\n';
}

void AddKindOption(CLI::App& command, SResourcesOptions& options, bool required) {
    command.add_option("--as", options.as, "Which kind: pattern or texture")
        ->type_name("KIND")
        ->check(OneOf({"pattern", "texture"}))
        ->required(required);
}

}  // namespace

void AddResourcesCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "resources",
        "List the patterns of Sculpture and the textures of Texture; add your own, remove them");
    auto options = std::make_shared<SResourcesOptions>();
    AddJsonOption(*command, options->json);
    AddLibraryOption(*command, options->folders);
    command->require_subcommand(0, 1);
    command->callback([command, options] {
        if (command->get_subcommands().empty()) List(*options);
    });

    auto* add = command->add_subcommand(
        "add", "Make a photograph of a material into a pattern or texture of your own library");
    add->add_option("PHOTO", options->photo.file, "Photograph: PNG, JPEG, TIFF or WebP")
        ->required();
    AddKindOption(*add, *options, true);
    add->add_option("--category", options->category, "Category that it joins")
        ->type_name("NAME")
        ->capture_default_str();
    add->add_option("--name", options->name, "Its name; default: the file's")->type_name("NAME");
    add->add_flag("--seamless", options->seamless,
                  "Even out the light and join the borders, so that it can be tiled");
    add->add_flag("--overwrite", options->overwrite, "Replace one of yours of this name");
    add->callback([options] { Add(*options); });

    AddJsonOption(*add, options->json);

    const auto complete = [&](CLI::App* named, auto&& run) {
        named->add_option("NAME", options->name, "Name of the picture")->required();
        AddKindOption(*named, *options, false);
        AddJsonOption(*named, options->json);
        named->callback([options, run] { run(*options); });
    };
    complete(command->add_subcommand("remove", "Remove a picture of your own library"), &Remove);
    complete(command->add_subcommand("show", "Print what there is of a name, as JSON"), &Show);
}
