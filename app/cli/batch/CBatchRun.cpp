#include "app/cli/batch/CBatchRun.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <new>
#include <thread>

#include "app/cli/CliError.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/batch/CBatchLog.h"
#include "app/cli/batch/Digest.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

constexpr auto kShowEvery = std::chrono::milliseconds(100);

// Pictures in hand are finished: a wish to stop is heard between them.
struct CDeaf final : IProgressSink {
    bool OnProgress(double /*fraction*/) override { return false; }
};

double Since(Clock::time_point& start) {
    const auto now = Clock::now();
    return std::chrono::duration<double>(now - std::exchange(start, now)).count();
}

// When a file's content or state changed last, in nanoseconds: no write leaves it as it was.
std::int64_t ChangedAt(const struct stat& file) {
    return std::int64_t{file.st_ctim.tv_sec} * 1000000000 + file.st_ctim.tv_nsec;
}

void PutFile(ordered_json& line, const std::string& role, const struct stat& file,
             const std::string& digest) {
    line[role + "Size"] = file.st_size;
    line[role + "Changed"] = ChangedAt(file);
    line[role + "Digest"] = digest;
}

// Whether a file is the one of a line: by size and time, or else by its content.
bool IsFileOf(const ordered_json& line, const std::string& role, const std::string& name,
              bool verify) {
    struct stat file = {};
    if (stat(name.c_str(), &file) != 0 || !S_ISREG(file.st_mode)) return false;
    if (line.at(role + "Size") != file.st_size) return false;
    if (!verify && line.at(role + "Changed") == ChangedAt(file)) return true;
    try {
        return line.at(role + "Digest") == digest::OfFile(name);
    } catch (const CFileError&) {
        return false;
    }
}

// Whether a line is about a picture as it is wanted now.
bool IsOf(const SBatchItem& item, const ordered_json& line) {
    SBatchItem logged(line);
    logged.recipe = item.recipe;
    return logged == item;
}

struct SOpened {
    std::shared_ptr<const CDescriptor> descriptor;
    struct stat status = {};
};
SOpened OpenInput(const std::string& name) {
    SOpened opened{.descriptor = std::make_shared<const CDescriptor>(
                       open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))};
    if (!*opened.descriptor || fstat(opened.descriptor->Get(), &opened.status) != 0) {
        throw CCliError(
            EExit::Unreadable,
            fmt::format("{}: {}", DisplayText(name), Tr("cannot be read: {}", SystemText(errno))));
    }
    return opened;
}

void MakeFolderFor(const std::string& output) {
    const fs::path folder = fs::path(output).parent_path();
    std::error_code error;
    if (folder.empty() || fs::is_directory(folder, error)) return;
    fs::create_directories(folder, error);
    if (error) {
        throw CCliError(EExit::Output,
                        Tr("{}: the folder {} cannot be made: {}", DisplayText(output),
                           DisplayText(folder), SystemText(error.value())));
    }
}

std::string Now() {
    const std::time_t now = std::time(nullptr);
    std::tm utc = {};
    gmtime_r(&now, &utc);
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

// Runs `work`; what it throws, whatever it is, ends a picture only.
template <class Work>
std::optional<CCliError> Caught(const std::string& name, Work&& work) {
    const auto error = [&](EExit exit, const std::string& what) {
        return CCliError(exit, fmt::format("{}: {}", DisplayText(name), what));
    };
    try {
        work();
        return std::nullopt;
    } catch (const CCliError& failure) {
        const std::string what = failure.what();
        const bool says_where = what.find(DisplayText(name)) != std::string::npos;
        return says_where
                   ? failure
                   : CCliError(failure.Exit(), error(failure.Exit(), what).what(), failure.Hint());
    } catch (const std::bad_alloc&) {
        return error(EExit::Limit, Tr("there is not enough memory"));
    } catch (const CFileError& failure) {
        return CCliError(EExit::Output, failure.what(), failure.Hint());
    } catch (const std::exception& failure) {
        return error(EExit::Fault, failure.what());
    }
}

int Threads(int wanted) {
    if (wanted > 0) return wanted;
    return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

}  // namespace

int WorseStatus(int a, int b) {
    constexpr int kFault = static_cast<int>(EExit::Fault);
    return a == kFault || b == kFault ? kFault : std::max(a, b);
}

CBatchRun::CBatchRun(const SBatchPlan& plan, const SBatchOptions& options, CBatchLog& log)
    : plan_(plan),
      options_(options),
      log_(log),
      memory_(MemoryBudget(options.reading.input)),
      threads_(Threads(options.jobs)) {
    totals_.pictures = plan.items.size();
    if (options.retry_failed) {
        totals_.pictures = static_cast<std::size_t>(
            std::count_if(plan.items.begin(), plan.items.end(),
                          [&](const SBatchItem& item) { return IsWanted(item); }));
    }
}

bool CBatchRun::Stops() const { return stops_ || interruption::Requested(); }

bool CBatchRun::IsWanted(const SBatchItem& item) const {
    if (!options_.retry_failed) return true;
    const SPictureRecord* record = log_.Find(item.output);
    return record && record->state == EPictureState::Failed;
}

void CBatchRun::LogPlan() {
    const ordered_json run = {{"event", "run"},
                              {"version", CMDTEXTURE_VERSION},
                              {"time", Now()},
                              {"shard", plan_.shard.Text()},
                              {"pictures", plan_.items.size()},
                              {"of", plan_.of},
                              {"work", plan_.common_work}};
    std::string lines = CBatchLog::LineOf(run);
    constexpr std::size_t kWrite = std::size_t{1} << 20;
    for (const SBatchItem& item : plan_.items) {
        const ordered_json& work = plan_.recipes[item.recipe].work;
        const SPictureRecord* record = log_.Find(item.output);
        if (record && IsOf(item, record->line) && record->work == work) continue;
        ordered_json line = item.Line("planned");
        if (work != plan_.common_work) line["work"] = work;
        lines += CBatchLog::LineOf(line);
        if (lines.size() > kWrite) log_.Append(std::exchange(lines, {}));
    }
    log_.Append(lines);
}

SBatchTotals CBatchRun::Run(const std::function<void(const SBatchTotals&)>& show) {
    LimitMemory(options_.reading, true);
    LogPlan();
    const auto start = Clock::now();
    std::atomic<int> at_work = threads_;
    std::vector<std::thread> threads;
    threads.reserve(threads_);
    for (int i = 0; i < threads_; ++i) {
        threads.emplace_back([&] {
            Work();
            --at_work;
        });
    }
    const auto totals = [&] {
        const std::lock_guard lock(mutex_);
        totals_.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        return totals_;
    };
    for (auto shown = start; at_work > 0; std::this_thread::sleep_for(kShowEvery / 10)) {
        if (Clock::now() - shown < kShowEvery) continue;
        shown = Clock::now();
        show(totals());
    }
    for (std::thread& thread : threads) thread.join();
    if (error_) std::rethrow_exception(error_);
    return totals();
}

void CBatchRun::Work() noexcept {
    try {
        while (!Stops()) {
            const std::size_t i = next_++;
            if (i >= plan_.items.size()) return;
            if (IsWanted(plan_.items[i])) Process(plan_.items[i]);
        }
    } catch (...) {  // the log
        stops_ = true;
        const std::lock_guard lock(mutex_);
        if (!error_) error_ = std::current_exception();
    }
}

void CBatchRun::Process(const SBatchItem& item) {
    bool is_done = false;
    ordered_json line;
    const auto error = Caught(item.input, [&] {
        is_done = IsDone(item);
        if (!is_done) line = Make(item);
    });
    if (error) return LogFailure(item, *error);
    if (is_done) return Count([](SBatchTotals& totals) { ++totals.skipped; });
    if (line.is_null()) return;  // it was not begun
    Count([&](SBatchTotals& totals) {
        ++totals.done;
        totals.warnings += line["warnings"].size();
        totals.megapixels += line["width"].get<double>() * line["height"].get<double>() / 1e6;
    });
}

void CBatchRun::LogFailure(const SBatchItem& item, const CCliError& error) {
    messages::Error(static_cast<int>(error.Exit()), error.what(), error.Hint());
    const int status = static_cast<int>(error.Exit());
    ordered_json line = item.Line("failed");
    line["status"] = status;
    line["error"] = error.what();
    if (!error.Hint().empty()) line["hint"] = error.Hint();
    line["time"] = Now();
    log_.Append(line);
    Count([&](SBatchTotals& totals) {
        ++totals.failed;
        totals.status = WorseStatus(totals.status, status);
        totals.failures.push_back(line);
    });
    if (options_.stop_on_error) stops_ = true;
}

bool CBatchRun::IsDone(const SBatchItem& item) const {
    const SPictureRecord* record = log_.Find(item.output);
    if (!record || record->state != EPictureState::Done) return false;
    const ordered_json& line = record->line;
    try {
        return IsOf(item, line) && line.at("version") == CMDTEXTURE_VERSION &&
               line.at("recipeDigest") == plan_.recipes[item.recipe].digest &&
               IsFileOf(line, "input", item.input, options_.verify) &&
               (item.mask.empty() || IsFileOf(line, "mask", item.mask, options_.verify)) &&
               IsFileOf(line, "output", item.output, options_.verify);
    } catch (const ordered_json::exception&) {  // a line that somebody has changed
        return false;
    }
}

// The picture's line in the log; null when it was not begun because the batch stops.
ordered_json CBatchRun::Make(const SBatchItem& item) {
    const SPictureRecord* record = log_.Find(item.output);
    const imagefile::SOutputRules rules{
        .overwrite = options_.overwrite || (record && record->was_begun), .input = item.input};
    SDocumentOptions document = item.Document(options_.reading);
    const SInputOptions& input = document.input;
    const SOpened opened = OpenInput(item.input);
    input.gathered = opened.descriptor;
    const imagefile::SImageHeader header = ReadPictureHeader(input);
    CRecipe recipe = plan_.recipes[item.recipe].recipe.Copy();
    FitRecipe(recipe, CanvasOf(document, header.size), header.size);
    if (!item.mask.empty()) CheckMask(document, header.size);
    MakeFolderFor(item.output);
    CheckPictureOutput(item.output, rules, header.size, options_.coding);

    const auto share = memory_.Take(MemoryFor(header));
    if (Stops()) return nullptr;
    log_.Append(item.Line("begun"));
    ordered_json line = item.Line("done");
    line["status"] = 0;
    line["warnings"] = ordered_json::array();
    const FWarn warn = [&](const std::string& text) { line["warnings"].push_back(text); };
    PutFile(line, "input", opened.status,
            digest::OfDescriptor(opened.descriptor->Get(), item.input));
    if (!item.mask.empty()) {
        const SOpened mask = OpenInput(item.mask);
        PutFile(line, "mask", mask.status, digest::OfDescriptor(mask.descriptor->Get(), item.mask));
    }
    line["recipeDigest"] = plan_.recipes[item.recipe].digest;
    line["version"] = CMDTEXTURE_VERSION;
    line["width"] = header.size.cx;
    line["height"] = header.size.cy;

    CDeaf progress;
    auto watch = Clock::now();
    SPictures pictures = ReadPictures(document, progress, warn);
    line["seconds"]["load"] = Since(watch);
    for (const SRecipeStep& step : recipe.Steps()) {
        const std::string warning = PrecisionWarning(step.job, header.format);
        if (!warning.empty()) warn(warning);
    }
    const CRowIteratorBands result =
        RunRecipe(recipe, std::exchange(pictures.input.pixels, {}), pictures.selection, progress);
    line["seconds"]["effect"] = Since(watch);
    WritePicture(item.output, result, pictures.input.metadata, rules, progress, options_.coding,
                 warn);
    line["seconds"]["save"] = Since(watch);

    struct stat written = {};
    if (stat(item.output.c_str(), &written) != 0) {
        throw CFileError(item.output, Tr("cannot be found again: {}", SystemText(errno)));
    }
    PutFile(line, "output", written, digest::OfFile(item.output));
    line["time"] = Now();
    log_.Append(line);  // while the picture still counts as in hand
    return line;
}
