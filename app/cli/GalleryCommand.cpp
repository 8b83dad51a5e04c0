#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "app/cli/CContactSheet.h"
#include "app/cli/CGalleryPage.h"
#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/cli/Pictures.h"
#include "app/cli/Report.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/CommandLine.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/COutputFile.h"

namespace {

constexpr int kColumns = 5;
constexpr CSize kCell{300, 225};
// On the page, where many are smaller, lest it grow too large to be sent.
constexpr int kLongest = 1000, kLongestOfMany = 640;
constexpr std::size_t kMany = 30;

struct SGalleryOptions {
    SSessionOptions session;
    SInputOptions input;
    std::string folder;
    std::string sheet;  // empty: contact-sheet.png in the folder
    std::vector<std::string> resources;
    std::string effect;                // empty: all of them
    std::vector<std::string> presets;  // files, or names of presets, of the effect
    std::vector<std::string> recipes;  // files
    bool all_presets = false;          // of the effect, or of every effect
    bool library = false;              // every pattern and texture instead
    bool overwrite = false, quiet = false, json = false;
};

// One picture of the gallery: a recipe, or an effect with its defaults or something over them.
struct SEntry {
    SWorkOptions work;
    std::string variant;  // what is over the defaults, as a part of a file name
    std::string title;    // what tells it from the others; empty: the effect's name

    std::string Name() const {
        return variant.empty() || work.effect.empty() ? work.effect + variant
                                                      : work.effect + '-' + variant;
    }
};

void Add(SEntry added, std::vector<SEntry>& entries) {
    const auto same = [&](const SEntry& other) { return other.Name() == added.Name(); };
    if (std::any_of(entries.begin(), entries.end(), same)) {
        const bool is_recipe = !added.work.recipe.empty();
        throw CCliError(EExit::Usage,
                        is_recipe ? Tr("--recipe {}: another picture is to be named {}",
                                       added.work.recipe, added.Name())
                                  : Tr("--preset {}: another picture is to be named {}",
                                       added.work.parameters.preset, added.Name()),
                        is_recipe ? Tr("give recipes of different names")
                                  : Tr("give presets of different names"));
    }
    entries.push_back(std::move(added));
}

// The effect at its defaults, with the presets that were asked for.
void AddEffect(const CJobLibrary& library, const std::string& effect,
               const SGalleryOptions& options, std::vector<SEntry>& entries) {
    entries.push_back({{.effect = effect}, "", ""});
    for (const std::string& preset : options.presets) {
        const std::string stem = std::filesystem::path(preset).stem();
        Add({{.effect = effect, .parameters = {.preset = preset}}, stem, stem}, entries);
    }
    if (!options.all_presets) return;
    for (const presets::SPreset& preset : library.Presets(effect)) {
        // By its file: a preset that ships shows itself, whatever the user calls his own.
        const SParameterOptions values{.preset = preset.file};
        const auto hidden = [&](const SEntry& e) {
            return e.work.effect == effect && e.variant == preset.id;
        };
        if (std::any_of(entries.begin(), entries.end(), hidden)) continue;
        entries.push_back({{.effect = effect, .parameters = values}, preset.id, preset.name});
    }
}

// Every pattern as Sculpture uses it, every texture as Texture does.
std::vector<SEntry> LibraryEntries(const CJobLibrary& library) {
    std::vector<SEntry> entries;
    for (const auto& [type, effect, parameter] :
         {std::tuple(CFileResourceLibrary::kPatterns, "Sculpture", "PatternName"),
          std::tuple(CFileResourceLibrary::kTextures, "Texture", "TextureName")}) {
        for (const auto& file : library.Resources().Files(type)) {
            std::vector<std::string> values{fmt::format("{}={}", parameter, file.name)};
            if (type == CFileResourceLibrary::kTextures) values.emplace_back("Depth=8");
            entries.push_back({{.effect = effect, .parameters = {.values = std::move(values)}},
                               file.name,
                               file.name});
        }
    }
    return entries;
}

std::vector<SEntry> Entries(const CJobLibrary& library, const SGalleryOptions& options) {
    if (options.library) return LibraryEntries(library);
    std::vector<SEntry> entries;
    std::vector<std::string> effects;
    if (!options.effect.empty()) effects = {EffectName(library, options.effect)};
    if (options.effect.empty() && options.recipes.empty()) effects = library.Names();
    for (const std::string& effect : effects) AddEffect(library, effect, options, entries);
    for (const std::string& recipe : options.recipes) {
        const std::string stem = std::filesystem::path(recipe).stem();
        Add({{.recipe = recipe}, stem, stem}, entries);
    }
    return entries;
}

std::filesystem::path MakeFolder(const std::string& name) {
    std::error_code error;
    std::filesystem::create_directories(name, error);
    if (error || !std::filesystem::is_directory(name)) {
        throw CCliError(EExit::Output, Tr("{}: the folder cannot be made", name),
                        error ? SystemText(error.value()) : Tr("a file of this name exists"));
    }
    return name;
}

// The command line that makes a picture of the gallery.
std::string CommandOf(const SEntry& entry, const SGalleryOptions& options) {
    const SWorkOptions& work = entry.work;
    const bool is_recipe = !work.recipe.empty();
    std::string line = "cmdtexture apply ";
    line += is_recipe ? "--recipe " + QuotedFile(work.recipe) : QuotedForShell(work.effect);
    line += ' ' + QuotedFile(options.input.file) + " -o " + QuotedFile(entry.Name() + ".png");
    const bool ships = work.parameters.preset.ends_with('/' + entry.variant + ".json");
    const std::string& preset = ships ? entry.variant : work.parameters.preset;
    if (!preset.empty()) line += " --preset " + QuotedForShell(preset);
    for (const std::string& value : work.parameters.values) line += " -p " + QuotedForShell(value);
    return line;
}

void WritePage(const CGalleryPage& page, const std::filesystem::path& file,
               const std::string& language, const imagefile::SOutputRules& rules) {
    try {
        COutputFile out(file, rules);
        const std::string html = page.Make(language);
        out.Write({reinterpret_cast<const std::uint8_t*>(html.data()), html.size()});
        out.Publish();
    } catch (const CFileError& error) {
        throw CCliError(EExit::Output, error.what(), error.Hint());
    }
}

void CheckPage(const std::filesystem::path& file, const imagefile::SOutputRules& rules) {
    try {
        COutputFile::Check(file, rules);
    } catch (const CFileError& error) {
        throw CCliError(EExit::Output, error.what(), error.Hint());
    }
}

void Gallery(const SGalleryOptions& options) {
    const CJobLibrary library = OpenJobs(options.session, options.resources);
    const std::vector<SEntry> entries = Entries(library, options);
    std::vector<CRecipe> recipes;
    recipes.reserve(entries.size());
    for (const SEntry& entry : entries) {
        recipes.push_back(MakeCheckedRecipe(library, entry.work));
    }
    CProgress progress(CProgress::StyleFor(options.quiet, false));
    progress.BeginPart(Tr("reading"), 0.1);
    const imagefile::SImageFile input = ReadPicture(options.input, progress);
    const CSize size{input.pixels.GetWidth(), input.pixels.GetHeight()};
    for (CRecipe& recipe : recipes) FitRecipe(recipe, size, size);

    const std::filesystem::path folder = MakeFolder(options.folder);
    const imagefile::SOutputRules rules{options.overwrite, options.input.file};
    const auto file = [&](const std::string& name) { return folder / (name + ".png"); };
    for (const SEntry& entry : entries) CheckPictureOutput(file(entry.Name()), rules, {});
    const std::filesystem::path sheet_file =
        options.sheet.empty() ? file("contact-sheet") : std::filesystem::path(options.sheet);
    CheckPictureOutput(sheet_file, rules, {});
    const std::filesystem::path page_file = folder / "index.html";
    CheckPage(page_file, rules);

    const std::string input_name = std::filesystem::path(options.input.file).filename();
    CGalleryPage page(Tr("Textures of {}", DisplayText(input_name)), input.pixels,
                      entries.size() > kMany ? kLongestOfMany : kLongest);
    CContactSheet sheet(std::min(kColumns, static_cast<int>(entries.size()) + 1), kCell);
    sheet.Add(Tr("Original"), input.pixels);
    auto pictures = nlohmann::ordered_json::array();
    double done = 0.1;
    const double share = 0.85 / static_cast<double>(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string name = entries[i].Name();
        progress.BeginPart(name, done + 0.7 * share);
        const CRowIteratorBands result = RunRecipe(recipes[i], input.pixels, {}, progress);
        progress.BeginPart(Tr("writing"), done += share);
        WritePicture(file(name), result, input.metadata, rules, progress);
        pictures.push_back({{"effect", entries[i].work.effect},
                            {"variant", entries[i].variant},
                            {"file", file(name).string()}});
        const std::string effect = recipes[i].Steps()[0].job.Describe().display_name;
        const std::string title = entries[i].title.empty() ? effect : entries[i].title;
        sheet.Add(title, result);
        page.Add(entries[i].work.recipe.empty() ? effect : Tr("Recipes"), title,
                 CommandOf(entries[i], options), result);
    }
    progress.BeginPart(Tr("contact sheet"), 1.0);
    WritePicture(sheet_file, sheet.Make(), nullptr, rules, progress);
    WritePage(page, page_file, library.Language(), rules);
    if (!options.json) return;
    report::PrintDone({{"input", options.input.file},
                       {"directory", options.folder},
                       {"sheet", sheet_file.string()},
                       {"page", page_file.string()},
                       {"pictures", pictures}});
}

}  // namespace

void AddGalleryCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "gallery",
        "Apply every effect to an image, and make a contact sheet and a web page of the results");
    auto options = std::make_shared<SGalleryOptions>();
    command
        ->add_option("IN", options->input.file,
                     "Image to read: PNG, JPEG, TIFF or WebP; - is standard input")
        ->required();
    command
        ->add_option("-d,--directory", options->folder,
                     "Folder for the results, which are PNG files; made when it is missing")
        ->type_name("DIR")
        ->required();
    auto* effect = command
                       ->add_option("--effect", options->effect,
                                    "Show this effect only, at its defaults and with presets")
                       ->type_name("EFFECT");
    command
        ->add_option("--preset", options->presets,
                     "Show a preset of the effect, by name or file, too")
        ->type_name("PRESET")
        ->needs(effect);
    auto* all = command->add_flag("--presets", options->all_presets,
                                  "Show all presets of the effect, or of every effect");
    auto* recipe = command->add_option("--recipe", options->recipes,
                                       "Show what a recipe makes, instead of every effect; may be "
                                       "repeated");
    recipe->type_name("FILE")->allow_extra_args(false);
    command
        ->add_flag("--library", options->library,
                   "Show every pattern, through Sculpture, and every texture, through Texture")
        ->excludes(effect)
        ->excludes(all)
        ->excludes(recipe);
    command
        ->add_option("--sheet", options->sheet,
                     "File of the contact sheet; default: contact-sheet.png in DIR")
        ->type_name("FILE");
    command->add_flag("--overwrite", options->overwrite, "Replace existing files");
    command->add_flag("--quiet", options->quiet, "Show no progress");
    AddJsonOption(*command, options->json);
    AddLibraryOption(*command, options->resources);
    AddSessionOptions(*command, options->session);
    command->callback([options] { Gallery(*options); });
}
