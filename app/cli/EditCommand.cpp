#include <filesystem>
#include <nlohmann/json.hpp>

#include "app/cli/CEditSession.h"
#include "app/cli/Commands.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"
#include "app/imagefile/InputStream.h"
#include "hostlib/language/Texts.h"

namespace {

void Edit(const SEditOptions& options) {
    const CJobLibrary library = OpenJobs(options.session, options.document.resources);
    const CSelectedLanguage language = library.SelectForWindows();
    CEditSession session(library, options);
    const std::string written = session.Run();
    if (options.json) {
        const CEffectJob* job = session.Job();
        nlohmann::ordered_json result = {{"input", options.document.input.file},
                                         {"output", nullptr}};
        if (!written.empty()) result["output"] = written;
        if (job) result["effect"] = job->Name();
        if (job) result["parameters"] = job->Values();
        report::PrintDone(result);
    } else if (written.empty()) {
        messages::Say(Tr("cancelled; nothing was written"));
    } else if (written != imagefile::kStandardStream) {
        messages::Say(Tr("wrote {}", written));
    }
}

}  // namespace

void AddEditCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "edit",
        "Set effects in a window with a live preview, then write the result. What is not given is "
        "asked for. Cancelling the window writes nothing and is no error");
    auto options = std::make_shared<SEditOptions>();
    command
        ->add_option("EFFECT", options->effect,
                     "Name of the effect; default: a window shows them all")
        ->type_name("EFFECT");
    AddDocumentOptions(*command, options->document);
    command->get_option("IN")->required(false);
    command
        ->add_option("-o,--output", options->output,
                     "Image to write; default: the window asks for it")
        ->type_name("OUT");
    AddCodingOptions(*command, options->coding);
    AddParameterOptions(*command, options->parameters);
    command->add_flag("--overwrite", options->overwrite, "Replace an existing output file");
    AddJsonOption(*command, options->json);
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
