#include <filesystem>

#include "app/cli/CEditSession.h"
#include "app/cli/Commands.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"
#include "app/imagefile/InputStream.h"

namespace {

void Edit(const SEditOptions& options) {
    const CJobLibrary library = OpenJobs(options.session, options.document.resources);
    const CSelectedLanguage language = library.SelectForWindows();
    const std::string written = CEditSession(library, options).Run();
    if (written.empty()) {
        messages::Say("cancelled; nothing was written");
    } else if (written != imagefile::kStandardStream) {
        messages::Say("wrote " + written);
    }
}

}  // namespace

void AddEditCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "edit",
        "Set effects in a window with a live preview, then write the result. What is not given is "
        "asked for. Cancelling the window writes nothing and is no error");
    auto options = std::make_shared<SEditOptions>();
    command->add_option("EFFECT", options->effect,
                        "Name of the effect; default: a window shows them all");
    AddDocumentOptions(*command, options->document);
    command->get_option("IN")->required(false);
    command
        ->add_option("-o,--output", options->output,
                     "Image to write; default: the window asks for it")
        ->type_name("OUT");
    AddCodingOptions(*command, options->coding);
    AddParameterOptions(*command, options->parameters);
    command->add_flag("--overwrite", options->overwrite, "Replace an existing output file");
    AddSessionOptions(*command, options->session);
    command->callback([options] {
        // A picture alone, without an effect.
        SInputOptions& input = options->document.input;
        if (input.file.empty() && std::filesystem::is_regular_file(options->effect)) {
            input.file = std::exchange(options->effect, {});
        }
        Edit(*options);
    });
}
