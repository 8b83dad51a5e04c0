#include "app/cli/CEditSession.h"

#include <filesystem>

#include "app/cli/CliError.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"

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

}  // namespace

CEditSession::CEditSession(const CJobLibrary& library, const SEditOptions& options)
    : library_(library),
      options_(options),
      job_(MakeCheckedJob(library, options.effect, options.parameters)),
      reading_(CProgress::StyleFor(false, false)) {
    CheckDocumentOptions(options.document);
    const auto rules = OutputRules(options.output, options.overwrite, options.document.input.file);
    header_ = ReadPictureHeader(options.document.input);
    if (!options.output.empty()) {
        CheckPictureOutput(options.output, rules, header_.size, options.coding);
    }
    SetCanvas(job_, options.effect, CanvasOf(options.document, header_.size));
    reading_.BeginPart("reading", 1.0);
    loader_.emplace(options.document, reading_);
}

std::string CEditSession::Run() {
    const CSelectedLanguage language = library_.SelectForWindows();
    CDesktopLibrary desktop(library_.Installation(),
                            {.input = options_.document.input.file,
                             .output = options_.output,
                             .overwrite = options_.overwrite,
                             .language = library_.Language(),
                             .size = header_.size,
                             .depth = header_.format.Is16bit() ? 16 : 8,
                             .picture_came = [this] { return PictureCame(); },
                             .add_picture = &AddPicture,
                             .interrupted = &interruption::Requested,
                             .results = this});
    const bool accepted = EditJob(job_);
    try {
        if (accepted || loader_->Look()) loader_->Wait();
    } catch (const CCliError& error) {
        desktop->ShowError(error.what());
        throw;
    }
    return accepted ? written_ : std::string();
}

bool CEditSession::PictureCame() {
    if (!loader_->Look()) return false;
    try {
        const SPictures& pictures = loader_->Wait();
        job_.SetPicture(pictures.input.pixels, pictures.selection);
    } catch (const CCliError&) {  // said when the window has closed
    } catch (const CInterrupted&) {
    }
    return true;
}

std::string CEditSession::Suggestion() const {
    const std::filesystem::path input(options_.document.input.file);
    return input.parent_path() / (input.stem().string() + "-" + job_.Name() + ".png");
}

std::string CEditSession::Check(const std::string& file, bool replace) const {
    try {
        CheckPictureOutput(file, OutputRules(file, replace, options_.document.input.file),
                           header_.size, options_.coding);
        return {};
    } catch (const CCliError& error) {
        return TextOf(error);
    }
}

SOutcome CEditSession::Make(const std::string& file, bool replace, IProgressSink& shared) {
    CProgress progress(CProgress::StyleFor(false, false), &shared);
    try {
        WarnOfPrecision(job_, header_.format);
        progress.BeginPart(job_.Name(), 0.75);
        const CRowIteratorBands result = RunJob(job_, progress);
        progress.BeginPart("writing", 1.0);
        WritePicture(file, result, loader_->Wait().input.metadata,
                     OutputRules(file, replace, options_.document.input.file), progress,
                     options_.coding);
        written_ = file;
        return {.written = true, .error = {}};
    } catch (const CInterrupted&) {
        return {};
    } catch (const CCliError& error) {
        return {.written = false, .error = TextOf(error)};
    } catch (const std::exception& error) {
        return {.written = false, .error = error.what()};
    }
}
