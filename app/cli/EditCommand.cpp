#include <fmt/format.h>

#include <filesystem>

#include "app/cli/CDesktopLibrary.h"
#include "app/cli/CPictureLoader.h"
#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Document.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"

namespace {

struct SEditOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    SDocumentOptions document;
    imagefile::SWriteOptions coding;
    std::string effect, output;
    bool overwrite = false;
};

std::string SuggestedOutput(const SEditOptions& options) {
    const std::filesystem::path input(options.document.input.file);
    return input.parent_path() / (input.stem().string() + "-" + options.effect + ".png");
}

// Takes a photograph into the user's library, seamless; answers what went wrong.
std::string AddPicture(bool pattern, const std::string& file, const std::string& category) {
    try {
        CProgress silent(CProgress::StyleFor(true, false));
        SInputOptions input;
        input.file = file;
        AddResource(
            ReadPicture(input, silent).pixels,
            {.type = pattern ? CFileResourceLibrary::kPatterns : CFileResourceLibrary::kTextures,
             .name = std::filesystem::path(file).stem(),
             .category = category,
             .seamless = true,
             .overwrite = false});
        return {};
    } catch (const CCliError& error) {
        return error.what();
    }
}

// The file to write, by option or question; empty when the user has no answer.
std::string ChooseOutput(const SEditOptions& options, CDesktopLibrary& desktop, CSize size,
                         imagefile::SOutputRules& rules) {
    if (!options.output.empty()) return options.output;
    for (std::string file = SuggestedOutput(options);;) {
        file = desktop->AskOutputFile(file);
        if (file.empty()) return {};
        rules.overwrite = true;  // the question covers a file that exists
        try {
            CheckPictureOutput(file, rules, size, options.coding);
            return file;
        } catch (const CCliError& error) {
            desktop->ShowError(error.what());
        }
    }
}

// Lets the user set the effect and choose a file; its name, empty when the user cancelled. A
// picture that cannot be read ends it with the error, which the user sees in a window, too.
std::string Converse(const SEditOptions& options, CDesktopLibrary& desktop, CEffectJob& job,
                     CPictureLoader& loader, CSize size, imagefile::SOutputRules& rules) {
    std::string output;
    while (output.empty()) {
        const bool accepted = EditJob(job);
        try {
            if (accepted || loader.Look()) loader.Wait();
        } catch (const CCliError& error) {
            desktop->ShowError(error.what());
            throw;
        }
        if (!accepted) return {};
        output = ChooseOutput(options, desktop, size, rules);
    }
    return output;
}

void Edit(const SEditOptions& options) {
    const CJobLibrary library = OpenJobs(options.session, options.document.resources);
    CEffectJob job = MakeCheckedJob(library, options.effect, options.parameters);
    CheckDocumentOptions(options.document);
    imagefile::SOutputRules rules =
        OutputRules(options.output, options.overwrite, options.document.input.file);
    const imagefile::SImageHeader header = ReadPictureHeader(options.document.input);
    if (!options.output.empty()) {
        CheckPictureOutput(options.output, rules, header.size, options.coding);
    }
    CProgress progress(CProgress::StyleFor(false, false));
    SetCanvas(job, options.effect, CanvasOf(options.document, header.size));

    progress.BeginPart("reading", 0.15);
    CPictureLoader loader(options.document, job, progress);
    const CSelectedLanguage language = library.SelectForWindows();
    CDesktopLibrary desktop(library.Installation(), {.input = options.document.input.file,
                                                     .output = options.output,
                                                     .language = library.Language(),
                                                     .size = header.size,
                                                     .depth = header.format.Is16bit() ? 16 : 8,
                                                     .picture_came = [&] { return loader.Look(); },
                                                     .add_picture = &AddPicture,
                                                     .interrupted = &interruption::Requested});
    const std::string output = Converse(options, desktop, job, loader, header.size, rules);
    if (output.empty()) {
        messages::Say("cancelled; nothing was written");
        return;
    }
    WarnOfPrecision(job, header.format);
    progress.BeginPart(options.effect, 0.7);
    const CRowIteratorBands result = RunJob(job, progress);
    progress.BeginPart("writing", 1.0);
    WritePicture(output, result, loader.Wait(), rules, progress, options.coding);
}

}  // namespace

void AddEditCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "edit",
        "Set an effect in a window with a live preview, then apply it. Cancelling the window "
        "writes nothing and is no error");
    auto options = std::make_shared<SEditOptions>();
    command->add_option("EFFECT", options->effect, "Name of the effect")->required();
    AddDocumentOptions(*command, options->document);
    command
        ->add_option("-o,--output", options->output,
                     "Image to write; default: the window asks for it")
        ->type_name("OUT");
    AddCodingOptions(*command, options->coding);
    AddParameterOptions(*command, options->parameters);
    command->add_flag("--overwrite", options->overwrite, "Replace an existing output file");
    AddSessionOptions(*command, options->session);
    command->callback([options] { Edit(*options); });
}
