#include "app/cli/CEditSession.h"

#include <algorithm>
#include <filesystem>

#include "app/cli/CliError.h"
#include "app/cli/Interruption.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/CommandLine.h"

namespace {

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

// What was wrong, with the hint, as a window says it.
std::string TextOf(const CCliError& error) {
    return error.Hint().empty() ? error.what() : std::string(error.what()) + "\n" + error.Hint();
}

// As recipes name them.
constexpr const char* kBlendModes[] = {"normal",  "multiply",   "screen",
                                       "overlay", "soft-light", "luminosity"};

// Runs `operation`, which makes something; its errors are the outcome's.
template <class Operation>
SOutcome Attempt(Operation&& operation) {
    try {
        operation();
        return {.done = true, .error = {}};
    } catch (const CInterrupted&) {
        return {};
    } catch (const CCliError& error) {
        return {.done = false, .error = TextOf(error)};
    } catch (const std::exception& error) {
        return {.done = false, .error = error.what()};
    }
}

}  // namespace

CEditSession::CEditSession(const CJobLibrary& library, SEditOptions options)
    : library_(library), options_(std::move(options)), reading_(CProgress::StyleFor(false, false)) {
    if (!options_.effect.empty()) MakeCurrent(options_.effect);
    CheckDocumentOptions(options_.document);
    const auto rules =
        OutputRules(options_.output, options_.overwrite, options_.document.input.file);
    reading_.BeginPart(Tr("reading"), 1.0);
    if (options_.document.input.file.empty()) return;
    ReadHeader();
    if (!options_.output.empty()) {
        CheckPictureOutput(options_.output, rules, header_.size, options_.coding);
    }
    BeginReading();
}

void CEditSession::ReadHeader() {
    header_ = ReadPictureHeader(options_.document.input);
    const CSize canvas = CanvasOf(options_.document, header_.size);
    for (auto& [name, job] : jobs_) SetCanvas(job, name, canvas);
}

void CEditSession::BeginReading() {
    loader_.reset();
    picture_.Destroy();
    for (auto& [name, job] : jobs_) job.SetPicture({});  // that of another file
    applied_.clear();
    loader_.emplace(options_.document, reading_);
}

// The job of an effect, as it was left when the effect was shown before.
void CEditSession::MakeCurrent(const std::string& effect) {
    const std::string name = EffectName(library_, effect);
    if (!jobs_.contains(name)) {
        const bool first = jobs_.empty() && !options_.effect.empty();
        CEffectJob job =
            MakeCheckedJob(library_, name, first ? options_.parameters : SParameterOptions());
        if (loader_) SetCanvas(job, name, CanvasOf(options_.document, header_.size));
        jobs_.emplace(name, std::move(job));
    }
    current_ = name;
    GivePicture();
}

void CEditSession::GivePicture() {
    if (picture_.IsAttached() && !current_.empty()) {
        Current().SetPicture(picture_, loader_->Wait().selection);
    }
}

void CEditSession::TellWindows() {
    SDesktopOptions& told = (*desktop_)->Options();
    told.input = options_.document.input.file;
    told.output = options_.output;
    told.overwrite = options_.overwrite;
    told.size = header_.size;
    told.depth = header_.format.Is16bit() ? 16 : 8;
}

// Shows dialog after dialog; whether the last one ended with OK.
bool CEditSession::EditAll() {
    if (current_.empty() || !loader_) {
        const std::string chosen = (*desktop_)->ChooseEffect();
        if (interruption::Requested()) throw CInterrupted();
        if (chosen.empty()) return false;
        MakeCurrent(chosen);
    }
    for (;;) {
        TellWindows();
        next_.clear();
        if (EditJob(Current())) return true;
        if (next_.empty()) return false;
        MakeCurrent(next_);
    }
}

std::string CEditSession::Run() {
    SDesktopOptions told;
    told.language = library_.Language();
    told.picture_came = [this] { return PictureCame(); };
    told.add_picture = &AddPicture;
    told.interrupted = &interruption::Requested;
    told.host = this;
    desktop_.emplace(library_.Installation(), told);
    TellWindows();
    const bool accepted = EditAll();
    try {
        if (loader_ && (accepted || loader_->Look())) loader_->Wait();
    } catch (const CCliError& error) {
        (*desktop_)->ShowError(error.what());
        throw;
    }
    return accepted ? written_ : std::string();
}

std::vector<SEffectEntry> CEditSession::Effects() const {
    std::vector<SEffectEntry> entries;
    for (const SEffectInfo& effect : library_.Effects()) {
        entries.push_back({effect.name, effect.display_name, effect.description});
    }
    return entries;
}

CRowIteratorBands CEditSession::Try(const std::string& effect, const CRowIteratorBands& picture,
                                    IProgressSink& progress) const {
    try {
        CEffectJob job = library_.MakeJob(effect);
        job.SetPicture(picture);
        return job.Run(&progress).image;
    } catch (const CJobError&) {
        return {};
    }
}

std::string CEditSession::Open(const std::string& file) {
    const std::string before = options_.document.input.file;
    const SOutcome outcome = Attempt([&] {
        options_.document.input.file = file;
        ReadHeader();
        BeginReading();
    });
    if (!outcome.done) {
        options_.document.input.file = before;
        return outcome.error;
    }
    if (!before.empty()) options_.output.clear();  // it was another picture's
    TellWindows();
    return {};
}

bool CEditSession::PictureCame() {
    if (!loader_ || !loader_->Look()) return false;
    if (picture_.IsAttached()) return true;
    try {
        picture_ = loader_->Wait().input.pixels;
        GivePicture();
    } catch (const CCliError&) {  // said when the window has closed
    } catch (const CInterrupted&) {
    }
    return true;
}

nlohmann::ordered_json CEditSession::Step(const SLayerMix& mix) const {
    nlohmann::ordered_json step = {{"effect", Current().Name()},
                                   {"parameters", Current().Values()}};
    if (mix.opacity != 100) step["opacity"] = mix.opacity / 100.0;
    if (mix.blend != ENBlendMode::Normal) {
        step["blend"] = kBlendModes[static_cast<std::size_t>(mix.blend)];
    }
    return step;
}

CRowIteratorBands CEditSession::Result(const SLayerMix& mix, CProgress& progress) {
    WarnOfPrecision(Current(), header_.format);
    progress.BeginPart(Current().Name(), 0.75);
    if (mix.IsPlain()) return RunJob(Current(), progress);
    CRecipe recipe = CRecipe::Parse(library_, nlohmann::ordered_json::array({Step(mix)}).dump());
    recipe.SetCanvas(CanvasOf(options_.document, header_.size));
    return RunRecipe(recipe, picture_, loader_->Wait().selection, progress);
}

SOutcome CEditSession::Apply(const SLayerMix& mix, IProgressSink& shared) {
    return Attempt([&] {
        CProgress progress(CProgress::StyleFor(false, false), &shared);
        const CRowIteratorBands result = Result(mix, progress);
        applied_.push_back({Current().Describe().display_name, Step(mix), picture_});
        picture_ = result;
    });
}

std::vector<std::string> CEditSession::Applied() const {
    std::vector<std::string> names;
    for (const SApplied& applied : applied_) names.push_back(applied.name);
    return names;
}

void CEditSession::TakeBack() {
    if (applied_.empty()) return;
    picture_ = applied_.back().before;
    applied_.pop_back();
}

std::string CEditSession::Suggestion() const {
    const std::filesystem::path input(options_.document.input.file);
    return input.parent_path() / (input.stem().string() + "-" + current_ + ".png");
}

std::vector<SFileOption> CEditSession::FileOptions(const std::string& file) const {
    const imagefile::SWriteOptions& coding = options_.coding;
    const imagefile::SWriteChoices choices = imagefile::ChoicesFor(file);
    std::vector<SFileOption> options;
    if (choices.quality) {
        const std::string quality = coding.quality ? std::to_string(*coding.quality) : "";
        options.push_back({"quality", {}, 1, 100, quality});
    }
    const auto add = [&](const char* name, const std::vector<std::string>& words,
                         const std::string& set) {
        const bool takes = std::find(words.begin(), words.end(), set) != words.end();
        if (!words.empty()) options.push_back({name, words, 0, 0, takes ? set : ""});
    };
    add("subsampling", choices.subsampling, coding.subsampling);
    add("compression", choices.compression, coding.compression);
    return options;
}

void CEditSession::SetFileOptions(const std::vector<SFileOption>& options) {
    if (options.empty()) return;
    options_.coding = {};
    for (const SFileOption& option : options) {
        if (option.name == "subsampling") options_.coding.subsampling = option.value;
        if (option.name == "compression") options_.coding.compression = option.value;
        if (option.name == "quality" && !option.value.empty()) {
            options_.coding.quality = std::stoi(option.value);
        }
    }
}

std::string CEditSession::Check(const std::string& file, bool replace) const {
    return Attempt([&] {
               CheckPictureOutput(file, OutputRules(file, replace, options_.document.input.file),
                                  header_.size, options_.coding);
           })
        .error;
}

SOutcome CEditSession::Make(const std::string& file, bool replace, const SLayerMix& mix,
                            IProgressSink& shared) {
    return Attempt([&] {
        CProgress progress(CProgress::StyleFor(false, false), &shared);
        const CRowIteratorBands result = Result(mix, progress);
        progress.BeginPart(Tr("writing"), 1.0);
        WritePicture(file, result, loader_->Wait().input.metadata,
                     OutputRules(file, replace, options_.document.input.file), progress,
                     options_.coding);
        written_ = file;
    });
}

// One effect is a command by itself; several, and mixed ones, are a recipe.
std::string CEditSession::CommandLine(const std::string& single, const std::string& output,
                                      const SLayerMix& mix) const {
    std::string line = single;
    const SDocumentOptions& document = options_.document;
    if (!applied_.empty() || !mix.IsPlain()) {
        nlohmann::ordered_json recipe = nlohmann::ordered_json::array();
        for (const SApplied& applied : applied_) recipe.push_back(applied.step);
        recipe.push_back(Step(mix));
        line = "printf %s " + QuotedForShell(recipe.dump()) +
               " | cmdtexture apply --recipe /dev/stdin " + QuotedFile(document.input.file) +
               " -o " + QuotedFile(output);
    }
    if (document.input.page > 0) line += " --page " + std::to_string(document.input.page);
    if (document.input.convert) line += " --convert";
    if (document.input.lenient) line += " --lenient";
    if (document.input.max_pixels != imagefile::kDefaultMaxPixels) {
        line += " --max-pixels " + std::to_string(document.input.max_pixels);
    }
    const std::string& format = options_.coding.format;
    if (!format.empty()) line += " --format " + QuotedForShell(format);
    for (const SFileOption& option : FileOptions(format.empty() ? output : "x." + format)) {
        if (!option.value.empty()) line += " --" + option.name + " " + option.value;
    }
    if (!document.mask.empty()) line += " --mask " + QuotedFile(document.mask);
    if (!document.canvas.empty()) line += " --canvas " + QuotedForShell(document.canvas);
    if (!document.at.empty()) line += " --at " + QuotedForShell(document.at);
    for (const std::string& folder : document.resources) {
        line += " --resources " + QuotedFile(folder);
    }
    return line;
}
