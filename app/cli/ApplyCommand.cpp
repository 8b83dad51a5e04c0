#include <fmt/format.h>

#include <chrono>
#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Document.h"
#include "app/cli/Interruption.h"
#include "app/cli/Options.h"

namespace {

using nlohmann::ordered_json;

struct SApplyOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    SDocumentOptions document;
    imagefile::SWriteOptions coding;
    std::string effect, output;
    double timeout = 0;
    bool overwrite = false, quiet = false, progress = false, json = false;
};

class CStopwatch {
  public:
    // The seconds since construction or the last call.
    double Lap() {
        const auto now = std::chrono::steady_clock::now();
        const double seconds = std::chrono::duration<double>(now - start_).count();
        start_ = now;
        return seconds;
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

void PrintResult(const SApplyOptions& options, const CEffectJob& job,
                 const CRowIteratorBands& image, ordered_json seconds) {
    const ordered_json result = {{"effect", job.Name()},
                                 {"input", options.document.input.file},
                                 {"output", options.output},
                                 {"width", image.GetWidth()},
                                 {"height", image.GetHeight()},
                                 {"layout", LayoutName(image.GetPixelFormat())},
                                 {"depth", image.GetPixelFormat().Is16bit() ? 16 : 8},
                                 {"parameters", job.Values()},
                                 {"seconds", std::move(seconds)}};
    // File names are bytes: what is not UTF-8 in them is replaced.
    std::cout << result.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
    std::cout.flush();
    if (!std::cout) {
        throw CCliError(EExit::Output, fmt::format("{} was written, but standard output cannot be",
                                                   options.output));
    }
}

void Apply(const SApplyOptions& options) {
    const CJobLibrary library = OpenJobs(options.session, options.document.resources);
    CEffectJob job = MakeCheckedJob(library, options.effect, options.parameters);
    CheckDocumentOptions(options.document);
    const imagefile::SOutputRules rules =
        OutputRules(options.output, options.overwrite, options.document.input.file);
    if (rules.stream >= 0 && options.json) {
        throw CCliError(EExit::Usage, "--json: standard output takes the picture already");
    }
    CheckPictureOutput(options.output, rules, {}, options.coding);
    interruption::SetTimeLimit(options.timeout);

    CProgress progress(CProgress::StyleFor(options.quiet, options.progress));
    CStopwatch watch;
    ordered_json seconds;
    progress.BeginPart("reading", 0.15);
    const imagefile::SImageHeader header = ReadPictureHeader(options.document.input);
    CheckPictureOutput(options.output, rules, header.size, options.coding);
    SetCanvas(job, options.effect, CanvasOf(options.document, header.size));
    SPictures pictures = ReadPictures(options.document, progress);
    GivePictures(job, pictures);
    seconds["load"] = watch.Lap();

    progress.BeginPart(options.effect, 0.7);
    WarnOfPrecision(job, header.format);
    const CRowIteratorBands result = RunJob(job, progress);
    seconds["effect"] = watch.Lap();

    progress.BeginPart("writing", 1.0);
    WritePicture(options.output, result, pictures.input.metadata, rules, progress, options.coding);
    seconds["save"] = watch.Lap();
    if (options.json) PrintResult(options, job, result, seconds);
}

}  // namespace

void AddApplyCommand(CLI::App& program) {
    auto* command = program.add_subcommand("apply", "Apply an effect to an image file");
    auto options = std::make_shared<SApplyOptions>();
    command->add_option("EFFECT", options->effect, "Name of the effect")->required();
    AddDocumentOptions(*command, options->document);
    command
        ->add_option("-o,--output", options->output,
                     "Image to write, of the kind that its extension tells; - is standard output, "
                     "which needs --format")
        ->type_name("OUT")
        ->required();
    AddCodingOptions(*command, options->coding);
    AddParameterOptions(*command, options->parameters);
    command
        ->add_option("--timeout", options->timeout,
                     "Give up after this time, and leave nothing behind")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e8));
    command->add_flag("--overwrite", options->overwrite, "Replace an existing output file");
    auto* quiet = command->add_flag("--quiet", options->quiet, "Show no progress");
    command->add_flag("--progress", options->progress, "Show progress, on a terminal or not")
        ->excludes(quiet);
    command->add_flag("--json", options->json, "Print what was done as a JSON object");
    AddSessionOptions(*command, options->session);
    command->callback([options] { Apply(*options); });
}
