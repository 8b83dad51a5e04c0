#include <fmt/format.h>

#include <iostream>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"
#include "app/cli/batch/BatchReport.h"
#include "app/cli/batch/CBatchLog.h"
#include "app/cli/batch/CBatchRun.h"
#include "app/cli/batch/CSetProgress.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/COutputFile.h"

namespace {

using nlohmann::ordered_json;

constexpr const char* kLogName = "cmdtexture-batch";

// That of a run without --log: in the working folder, one for each shard.
std::string LogOf(const SBatchOptions& options) {
    if (!options.log.empty()) return options.log;
    const SShard shard = options.shard.empty() ? SShard::FromEnvironment().value_or(SShard())
                                               : SShard::Parse(options.shard);
    if (shard.count == 1) return fmt::format("{}.jsonl", kLogName);
    return fmt::format("{}-{}-of-{}.jsonl", kLogName, shard.index, shard.count);
}

void PrintLine(const ordered_json& json) { std::cout << CBatchLog::LineOf(json); }

ordered_json Summary(const SBatchTotals& totals, const SBatchPlan& plan, const std::string& log) {
    const double seconds = std::max(totals.seconds, 1e-9);
    return {{"pictures", totals.pictures},
            {"done", totals.done},
            {"failed", totals.failed},
            {"skipped", totals.skipped},
            {"left", totals.Left()},
            {"warnings", totals.warnings},
            {"megapixels", totals.megapixels},
            {"seconds", totals.seconds},
            {"picturesPerSecond", static_cast<double>(totals.done) / seconds},
            {"megapixelsPerSecond", totals.megapixels / seconds},
            {"status", totals.status},
            {"shard", plan.shard.Text()},
            {"log", log},
            {"failures", totals.failures}};
}

// What a run would be told before it touches a pixel; the status is the worst.
int DryRun(const SBatchOptions& options, const SBatchPlan& plan, const CBatchLog* log) {
    int status = 0;
    for (const SBatchItem& item : plan.items) {
        try {
            const SDocumentOptions document = item.Document(options.reading);
            const imagefile::SImageHeader header = ReadPictureHeader(document.input);
            CRecipe recipe = plan.recipes[item.recipe].recipe.Copy();
            FitRecipe(recipe, CanvasOf(document, header.size), header.size);
            if (!item.mask.empty()) CheckMask(document, header.size);
            const std::filesystem::path folder = std::filesystem::path(item.output).parent_path();
            if (folder.empty() || std::filesystem::exists(folder)) {
                const SPictureRecord* record = log ? log->Find(item.output) : nullptr;
                const bool is_own = record && record->was_begun;
                CheckPictureOutput(item.output, {options.overwrite || is_own, item.input},
                                   header.size, options.coding);
            }
            if (!options.quiet) {
                std::cout << DisplayText(item.input) << " -> " << DisplayText(item.output) << '\n';
            }
        } catch (const CCliError& error) {
            messages::Error(static_cast<int>(error.Exit()), error.what(), error.Hint());
            status = WorseStatus(status, static_cast<int>(error.Exit()));
        }
    }
    return status;
}

int Run(const SBatchOptions& options) {
    CheckDocumentOptions(options.reading);
    const CJobLibrary library = OpenJobs(options.session, options.reading.resources);
    if (options.dry_run && !std::filesystem::exists(LogOf(options))) {
        return DryRun(options, MakePlan(library, options, nullptr), nullptr);
    }
    CBatchLog log(LogOf(options));
    if (log.DamagedLines() > 0) {
        messages::Warn(Tr("{}: {} lines cannot be read; their pictures are done again",
                          DisplayText(log.File()), log.DamagedLines()));
    }
    const SBatchPlan plan = MakePlan(library, options, &log);
    if (options.dry_run) return DryRun(options, plan, &log);
    SBatchTotals totals;
    {
        CSetProgress progress(CProgress::StyleFor(options.quiet, options.progress));
        totals =
            CBatchRun(plan, options, log).Run([&](const SBatchTotals& now) { progress.Show(now); });
    }
    if (!options.quiet) {
        messages::Say(Tr("{} in {:.1f} s, {}; log: {}", Counts(totals), totals.seconds,
                         Rates(totals), log.File().string()));
    }
    if (options.json) PrintLine(Summary(totals, plan, log.File()));
    if (!interruption::Requested()) return totals.status;
    messages::Say(Tr("interrupted; nothing was left half-written, run it again to go on"));
    return interruption::ExitStatus();
}

void WriteManifest(const SBatchOptions& options, const std::vector<ordered_json>& rows) {
    std::string text;
    for (const ordered_json& row : rows) text += CBatchLog::LineOf(row);
    if (options.output.empty()) {
        if (!options.json) std::cout << text;
        return;
    }
    try {
        COutputFile file(options.output, {.overwrite = options.overwrite, .input = {}});
        file.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        file.Publish();
    } catch (const CFileError& error) {
        throw CCliError(EExit::Output, error.what(), error.Hint());
    }
}

int Report(const SBatchOptions& options) {
    const SBatchReport report = ReportOn(options.report);
    WriteManifest(options, report.rows);
    for (const ordered_json& line : report.failures) {
        if (!options.quiet)
            messages::Error(line.value("status", 1), line.value("error", Tr("failed")));
    }
    for (const std::string& shard : report.shards_without_log) {
        messages::Warn(
            Tr("there is no log of shard {}; its pictures are not in the manifest, run it", shard));
    }
    if (!options.quiet) {
        messages::Say(Tr("{} done, {} failed, {} missing; {:.1f} megapixels in {:.1f} s of work",
                         report.done, report.failed, report.missing, report.megapixels,
                         report.seconds));
    }
    if (options.json) {
        ordered_json json = report.ToJson();
        if (options.output.empty()) json["manifest"] = report.rows;
        PrintLine(json);
    }
    const bool is_complete = report.missing == 0 && report.shards_without_log.empty();
    return report.status != 0 || is_complete ? report.status : static_cast<int>(EExit::Fault);
}

void AddInputOptions(CLI::App& command, SBatchOptions& options) {
    AddWorkOptions(command, options.work);
    command.add_option("INPUTS", options.inputs,
                       "Images, folders of them, and patterns such as 'scans/**/*.tif'");
    command.add_flag("-r,--recursive", options.recursive, "Look into folders below, too");
    command
        .add_option("--manifest", options.manifest,
                    "Do what this file says, too: a JSON object a line with input, output, and "
                    "recipe, or effect and parameters, and page, mask, canvas, at")
        ->type_name("FILE");
    AddPlaceOptions(command, options.reading);
    AddReadingOptions(command, options.reading);
}

void AddOutputOptions(CLI::App& command, SBatchOptions& options) {
    command
        .add_option("-o,--output", options.output,
                    "Names of the results, with {dir}, {name}, {ext}, {effect}, {index} and "
                    "{page}; with --report, the manifest to write")
        ->type_name("TEMPLATE");
    AddCodingOptions(command, options.coding);
    command.add_flag("--overwrite", options.overwrite,
                     "Replace existing files that are not this batch's own");
    command
        .add_option("--log", options.log,
                    "Record of what is done, which lets the batch go on when it is run again; "
                    "default: cmdtexture-batch.jsonl")
        ->type_name("FILE");
    command.add_flag("--verify", options.verify,
                     "Compare the content of what the log has as done, whatever its size and time");
}

void AddRunOptions(CLI::App& command, SBatchOptions& options) {
    command
        .add_option("-j,--jobs", options.jobs,
                    "Pictures in hand at most; default: the number of processors")
        ->type_name("N")
        ->check(WholeNumbers(1, 1024));
    command
        .add_option("--shard", options.shard,
                    "Do the part I of N only; in a Slurm array job, default: the task's")
        ->type_name("I/N");
    command.add_flag("--stop-on-error", options.stop_on_error,
                     "Begin no further picture after one has failed");
    command.add_flag("--retry-failed", options.retry_failed,
                     "Do only what failed, as the log has it");
    command.add_flag("--dry-run", options.dry_run,
                     "Check everything that can be checked without touching a pixel");
    auto* report = command
                       .add_option("--report", options.report,
                                   "Sum up the logs of shards, and write the manifest of what "
                                   "failed or is missing")
                       ->type_name("LOGS");
    report->excludes("--manifest")->excludes("--log")->excludes("--shard")->excludes("--dry-run");
    auto* quiet = command.add_flag("--quiet", options.quiet, "Show no progress and no summary");
    command.add_flag("--progress", options.progress, "Show progress, on a terminal or not")
        ->excludes(quiet);
    AddJsonOption(command, options.json);
}

}  // namespace

void AddBatchCommand(CLI::App& program) {
    auto* command = program.add_subcommand(
        "batch", "Apply an effect or a recipe to many images, and go on where it was stopped");
    auto options = std::make_shared<SBatchOptions>();
    AddInputOptions(*command, *options);
    AddOutputOptions(*command, *options);
    AddRunOptions(*command, *options);
    AddSessionOptions(*command, options->session);
    command->callback([options] {
        // With a recipe the first argument that stands alone is not an effect.
        std::string& effect = options->work.effect;
        if (!options->work.recipe.empty() && !effect.empty()) {
            options->inputs.insert(options->inputs.begin(), std::exchange(effect, {}));
        }
        const int status = options->report.empty() ? Run(*options) : Report(*options);
        if (status != 0) throw CExitStatus(status);
    });
}
