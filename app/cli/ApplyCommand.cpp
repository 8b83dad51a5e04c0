#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Document.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"
#include "hostlib/language/Texts.h"

namespace {

using nlohmann::ordered_json;

struct SApplyOptions {
    SSessionOptions session;
    SWorkOptions work;
    SDocumentOptions document;
    imagefile::SWriteOptions coding;
    std::string output;
    double timeout = 0;
    bool overwrite = false, quiet = false, progress = false, json = false, dry_run = false;
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

// What was done, or would be, as far as it is known without the pixels.
ordered_json Describe(const SApplyOptions& options, const CRecipe& recipe,
                      const imagefile::SImageHeader& header) {
    ordered_json done;
    const bool is_effect = options.work.recipe.empty();
    is_effect ? done["effect"] = recipe.Title() : done["recipe"] = options.work.recipe;
    done["input"] = options.document.input.file;
    done["output"] = options.output;
    done["width"] = header.size.cx;
    done["height"] = header.size.cy;
    done["layout"] = LayoutName(header.format);
    done["depth"] = header.format.Is16bit() ? 16 : 8;
    is_effect ? done["parameters"] = recipe.Steps()[0].job.Values()
              : done["steps"] = recipe.ToJson();
    return done;
}

void Print(const ordered_json& result, const std::string& trouble) {
    report::PrintDone(result);
    report::Flush(trouble);
}

// All that can be told without a pixel.
void DryRun(const SApplyOptions& options, CRecipe& recipe, const imagefile::SImageHeader& header) {
    if (!options.document.mask.empty()) CheckMask(options.document, header.size);
    if (options.json) {
        ordered_json result = Describe(options, recipe, header);
        result["dryRun"] = true;
        return Print(result, Tr("standard output cannot be written"));
    }
    messages::Say(Tr("{} of {}, {} x {} pixels, would be written to {}", recipe.Title(),
                     options.document.input.file, header.size.cx, header.size.cy, options.output));
}

void Apply(const SApplyOptions& options) {
    const imagefile::SOutputRules rules =
        OutputRules(options.output, options.overwrite, options.document.input.file);
    const CJobLibrary library = OpenJobs(options.session, options.document.resources);
    CRecipe recipe = MakeCheckedRecipe(library, options.work);
    CheckDocumentOptions(options.document);
    if (rules.stream >= 0 && options.json) {
        throw CCliError(EExit::Usage, Tr("--json: standard output takes the picture already"));
    }
    CheckPictureOutput(options.output, rules, {}, options.coding);
    interruption::SetTimeLimit(options.timeout);

    CProgress progress(CProgress::StyleFor(options.quiet, options.progress));
    CStopwatch watch;
    ordered_json seconds;
    progress.BeginPart(Tr("reading"), 0.15);
    const imagefile::SImageHeader header = ReadPictureHeader(options.document.input);
    CheckPictureOutput(options.output, rules, header.size, options.coding);
    FitRecipe(recipe, CanvasOf(options.document, header.size), header.size);
    if (options.dry_run) return DryRun(options, recipe, header);
    LimitMemory(options.document);
    SPictures pictures = ReadPictures(options.document, progress);
    seconds["load"] = watch.Lap();

    progress.BeginPart(recipe.Title(), 0.7);
    for (const SRecipeStep& step : recipe.Steps()) WarnOfPrecision(step.job, header.format);
    const CRowIteratorBands result =
        RunRecipe(recipe, std::exchange(pictures.input.pixels, {}), pictures.selection, progress);
    seconds["effect"] = watch.Lap();

    progress.BeginPart(Tr("writing"), 1.0);
    WritePicture(options.output, result, pictures.input.metadata, rules, progress, options.coding);
    seconds["save"] = watch.Lap();
    if (!options.json) return;
    ordered_json done = Describe(options, recipe, header);
    done["seconds"] = seconds;
    Print(done, Tr("{} was written, but standard output cannot be", options.output));
}

}  // namespace

void AddApplyCommand(CLI::App& program) {
    auto* command = program.add_subcommand("apply", "Apply an effect to an image file");
    auto options = std::make_shared<SApplyOptions>();
    AddWorkOptions(*command, options->work);
    AddDocumentOptions(*command, options->document);
    command->get_option("IN")->required(false);
    command
        ->add_option("-o,--output", options->output,
                     "Image to write, of the kind that its extension tells; - is standard output, "
                     "which needs --format")
        ->type_name("OUT")
        ->required();
    AddCodingOptions(*command, options->coding);
    command
        ->add_option("--timeout", options->timeout,
                     "Give up after this time, and leave nothing behind")
        ->type_name("SECONDS")
        ->check(Seconds());
    command->add_flag("--dry-run", options->dry_run,
                      "Check everything that can be checked without touching a pixel");
    command->add_flag("--overwrite", options->overwrite, "Replace an existing output file");
    auto* quiet = command->add_flag("--quiet", options->quiet, "Show no progress");
    command->add_flag("--progress", options->progress, "Show progress, on a terminal or not")
        ->excludes(quiet);
    AddJsonOption(*command, options->json);
    AddSessionOptions(*command, options->session);
    command->callback([options] {
        std::string& input = options->document.input.file;
        // With a recipe the first argument that stands alone is not an effect.
        if (!options->work.recipe.empty() && input.empty()) input.swap(options->work.effect);
        if (input.empty()) {
            const bool has_work = !options->work.effect.empty() || !options->work.recipe.empty();
            throw CCliError(EExit::Usage, Tr("missing: {}", has_work ? "IN" : "EFFECT, IN"),
                            Tr("see \"{} --help\"", "cmdtexture apply"));
        }
        Apply(*options);
    });
}
