#include <fmt/format.h>

#include <filesystem>

#include "app/cli/CContactSheet.h"
#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/EffectRun.h"
#include "app/cli/Library.h"
#include "app/cli/Options.h"
#include "app/cli/Pictures.h"

namespace {

constexpr int kColumns = 5;
constexpr CSize kCell{300, 225};

struct SGalleryOptions {
    SSessionOptions session;
    SInputOptions input;
    std::string folder;
    std::vector<std::string> resources;
    bool overwrite = false, quiet = false;
};

std::filesystem::path MakeFolder(const std::string& name) {
    std::error_code error;
    std::filesystem::create_directories(name, error);
    if (error || !std::filesystem::is_directory(name)) {
        throw CCliError(EExit::Output, fmt::format("{}: the folder cannot be made", name),
                        error ? error.message() : "a file of this name exists");
    }
    return name;
}

CRowIteratorBands EffectOn(const CRowIteratorBands& source, CCmdEffect& command,
                           const TRef<IResourceLibrary>& library, CProgress& progress) {
    const TRef<CDocument> document(new CDocument({source.GetWidth(), source.GetHeight()}));
    document->SetActiveImage(source);
    const TRef<CExecutionContext> context(new CExecutionContext(document, library, &progress));
    PrepareCommand(command, context.Get());
    return RunEffect(command, *context);
}

void Gallery(const SGalleryOptions& options) {
    const CSession session(options.session);
    const TRef<IResourceLibrary> library = OpenLibrary(options.resources);
    CProgress progress(CProgress::StyleFor(options.quiet, false));
    progress.BeginPart("reading", 0.1);
    const imagefile::SImageFile input = ReadPicture(options.input, progress);
    const std::filesystem::path folder = MakeFolder(options.folder);
    const imagefile::SOutputRules rules{options.overwrite, options.input.file};
    const std::string sheet_file = folder / "contact-sheet.png";
    std::vector<std::string> files;
    for (const std::string& name : session.Module().Names()) {
        files.push_back(folder / (name + ".png"));
        CheckPictureOutput(files.back(), rules, {});
    }
    CheckPictureOutput(sheet_file, rules, {});

    CContactSheet sheet(kColumns, kCell);
    sheet.Add("Original", input.pixels);
    const double share = 0.85 / static_cast<double>(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        const TRef<CCmdEffect> command =
            session.Module().CreateCommand(session.Module().Names()[i]);
        progress.BeginPart(session.Module().Names()[i],
                           0.1 + share * (static_cast<double>(i) + 0.7));
        const CRowIteratorBands result = EffectOn(input.pixels, *command, library, progress);
        progress.BeginPart("writing", 0.1 + share * (static_cast<double>(i) + 1.0));
        WritePicture(files[i], result, input.metadata, rules, progress);
        sheet.Add(ToUtf8(command->GetResourceData()->GetDisplayName()), result);
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
    command->add_flag("--overwrite", options->overwrite, "Replace existing files");
    command->add_flag("--quiet", options->quiet, "Show no progress");
    AddLibraryOption(*command, options->resources);
    AddSessionOptions(*command, options->session);
    command->callback([options] { Gallery(*options); });
}
