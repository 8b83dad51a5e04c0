#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "app/cli/CContactSheet.h"
#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Options.h"
#include "app/cli/Pictures.h"

namespace {

constexpr int kColumns = 5;
constexpr CSize kCell{300, 225};

struct SGalleryOptions {
    SSessionOptions session;
    SInputOptions input;
    std::string folder;
    std::string sheet;  // empty: contact-sheet.png in the folder
    std::vector<std::string> resources;
    std::string effect;                // empty: all of them
    std::vector<std::string> presets;  // files, or names of saved presets, of the effect
    bool overwrite = false, quiet = false;
};

// One picture of the gallery: an effect with its defaults, or with a preset over them.
struct SEntry {
    std::string effect;
    SParameterOptions parameters;

    std::string Name() const {
        const std::string preset = std::filesystem::path(parameters.preset).stem();
        return preset.empty() ? effect : effect + '-' + preset;
    }
};

std::vector<SEntry> Entries(const CJobLibrary& library, const SGalleryOptions& options) {
    std::vector<SEntry> entries;
    if (options.effect.empty()) {
        for (const std::string& name : library.Names()) entries.push_back({name, {}});
        return entries;
    }
    const std::string name = EffectName(library, options.effect);
    entries.push_back({name, {}});
    for (const std::string& preset : options.presets) {
        const SEntry added{name, {.values = {}, .preset = preset}};
        const auto same = [&](const SEntry& other) { return other.Name() == added.Name(); };
        if (std::any_of(entries.begin(), entries.end(), same)) {
            throw CCliError(
                EExit::Usage,
                fmt::format("--preset {}: another picture is to be named {}", preset, added.Name()),
                "give presets of different names");
        }
        entries.push_back(added);
    }
    return entries;
}

std::filesystem::path MakeFolder(const std::string& name) {
    std::error_code error;
    std::filesystem::create_directories(name, error);
    if (error || !std::filesystem::is_directory(name)) {
        throw CCliError(EExit::Output, fmt::format("{}: the folder cannot be made", name),
                        error ? error.message() : "a file of this name exists");
    }
    return name;
}

// The title of an entry on the contact sheet: what tells it from the others.
std::string Title(const SEntry& entry, const CEffectJob& job) {
    const std::string preset = std::filesystem::path(entry.parameters.preset).stem();
    return preset.empty() ? job.Describe().display_name : preset;
}

void Gallery(const SGalleryOptions& options) {
    const CJobLibrary library = OpenJobs(options.session, options.resources);
    const std::vector<SEntry> entries = Entries(library, options);
    std::vector<CEffectJob> jobs;
    for (const SEntry& entry : entries) {
        jobs.push_back(MakeCheckedJob(library, entry.effect, entry.parameters));
    }
    CProgress progress(CProgress::StyleFor(options.quiet, false));
    progress.BeginPart("reading", 0.1);
    const imagefile::SImageFile input = ReadPicture(options.input, progress);
    for (CEffectJob& job : jobs) {
        SetCanvas(job, {input.pixels.GetWidth(), input.pixels.GetHeight()});
        job.SetPicture(input.pixels);
    }

    const std::filesystem::path folder = MakeFolder(options.folder);
    const imagefile::SOutputRules rules{options.overwrite, options.input.file};
    const auto file = [&](const std::string& name) { return folder / (name + ".png"); };
    for (const SEntry& entry : entries) CheckPictureOutput(file(entry.Name()), rules, {});
    const std::filesystem::path sheet_file =
        options.sheet.empty() ? file("contact-sheet") : std::filesystem::path(options.sheet);
    CheckPictureOutput(sheet_file, rules, {});

    CContactSheet sheet(std::min(kColumns, static_cast<int>(entries.size()) + 1), kCell);
    sheet.Add("Original", input.pixels);
    double done = 0.1;
    const double share = 0.85 / static_cast<double>(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string name = entries[i].Name();
        progress.BeginPart(name, done + 0.7 * share);
        const CRowIteratorBands result = RunJob(jobs[i], progress);
        progress.BeginPart("writing", done += share);
        WritePicture(file(name), result, input.metadata, rules, progress);
        sheet.Add(Title(entries[i], jobs[i]), result);
    }
    progress.BeginPart("contact sheet", 1.0);
    WritePicture(sheet_file, sheet.Make(), nullptr, rules, progress);
}

}  // namespace

void AddGalleryCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "gallery", "Apply every effect to an image, and make a contact sheet of the results");
    auto options = std::make_shared<SGalleryOptions>();
    command->add_option("IN", options->input.file, "Image to read: PNG, JPEG, TIFF or WebP")
        ->required();
    command
        ->add_option("-d,--directory", options->folder,
                     "Folder for the results, which are PNG files; made when it is missing")
        ->type_name("DIR")
        ->required();
    auto* effect = command->add_option("--effect", options->effect,
                                       "Show this effect only, at its defaults and with presets");
    command
        ->add_option("--preset", options->presets,
                     "Show a saved preset or a preset file of the effect, too; may be repeated")
        ->needs(effect);
    command
        ->add_option("--sheet", options->sheet,
                     "File of the contact sheet; default: contact-sheet.png in DIR")
        ->type_name("FILE");
    command->add_flag("--overwrite", options->overwrite, "Replace existing files");
    command->add_flag("--quiet", options->quiet, "Show no progress");
    AddLibraryOption(*command, options->resources);
    AddSessionOptions(*command, options->session);
    command->callback([options] { Gallery(*options); });
}
