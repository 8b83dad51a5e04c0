#include "app/cli/Jobs.h"

#include <fmt/format.h>

#include "app/cli/CliError.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/imagefile/CPictureFiles.h"
#include "hostlib/language/Texts.h"

namespace {

EExit ExitOf(EJobFault fault) {
    switch (fault) {
        case EJobFault::Refused:
        case EJobFault::Preset:
        case EJobFault::UnknownEffect:
        case EJobFault::UnknownLanguage:
        case EJobFault::UnknownResource:
            return EExit::Usage;
        case EJobFault::Unreadable:
            return EExit::Unreadable;
        case EJobFault::Resource:
        case EJobFault::Scratch:
            return EExit::Output;
        case EJobFault::NotLoaded:
        case EJobFault::Effect:
            return EExit::Effect;
        case EJobFault::Memory:
            return EExit::Limit;
        case EJobFault::Cancelled:
        case EJobFault::Fault:
            break;
    }
    return EExit::Fault;
}

// Which subcommand shows what there is, after the job's own hint.
std::string HintOf(const CJobError& error, const std::string& effect) {
    const auto with = [&](const std::string& more) {
        if (error.Hint().empty()) return more;
        if (error.Hint().ends_with('?')) return error.Hint() + ' ' + more;
        return Tr("{}; {}", error.Hint(), more);
    };
    if (error.Fault() == EJobFault::UnknownEffect) return with(Tr("\"cmdtexture list\" shows all"));
    if (error.Fault() == EJobFault::UnknownResource) {
        return with(Tr("\"cmdtexture resources\" lists them"));
    }
    if (error.Fault() == EJobFault::Refused && error.Hint().empty() && !effect.empty()) {
        return Tr("\"cmdtexture describe {}\" lists the parameters", effect);
    }
    return error.Hint();
}

[[noreturn]] void Throw(const CJobError& error, const std::string& effect) {
    if (error.Fault() == EJobFault::Cancelled) throw CInterrupted();
    throw CCliError(ExitOf(error.Fault()), error.what(), HintOf(error, effect));
}

template <class Operation>
auto WithCliErrors(const std::string& effect, Operation&& operation) {
    try {
        return operation();
    } catch (const CJobError& error) {
        Throw(error, effect);
    }
}

std::vector<std::filesystem::path> Folders(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (!std::filesystem::is_directory(name)) {
            throw CCliError(EExit::Usage, Tr("--resources {}: no such folder", name));
        }
    }
    return {names.begin(), names.end()};
}

void SetOne(CEffectJob& job, const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
        throw CCliError(EExit::Usage, Tr("-p {}: expected NAME=VALUE", assignment));
    }
    job.Set(assignment.substr(0, equals), assignment.substr(equals + 1));
}

}  // namespace

CJobLibrary OpenJobs(const SSessionOptions& options,
                     const std::vector<std::string>& resource_folders) {
    try {
        CJobLibrary library({.language = options.language,
                             .resources = Folders(resource_folders),
                             .range_scale = options.range_scale == 0
                                                ? std::optional<int>()
                                                : std::optional<int>(options.range_scale),
                             .pictures = imagefile::MakePictureFiles()});
        if (!library.LanguageProblem().empty()) {
            messages::Warn(Tr("{}; the texts are in English", library.LanguageProblem()));
        }
        return library;
    } catch (const CJobError& error) {
        if (error.Fault() != EJobFault::UnknownLanguage) Throw(error, {});
        throw CCliError(EExit::Usage, Tr("--language {}: no such language", options.language),
                        error.Hint());
    }
}

TRef<CFileResourceLibrary> OpenPictures(const std::vector<std::string>& resource_folders) {
    return OpenResources(FindInstallation(), Folders(resource_folders),
                         imagefile::MakePictureFiles());
}

std::string EffectName(const CJobLibrary& library, const std::string& name) {
    return WithCliErrors(name, [&] { return library.Find(name); });
}

CEffectJob MakeJob(const CJobLibrary& library, const std::string& effect,
                   const SParameterOptions& options) {
    return WithCliErrors(effect, [&] {
        CEffectJob job = library.MakeJob(effect);
        if (!options.preset.empty()) job.TakePreset(options.preset);
        for (const std::string& assignment : options.values) SetOne(job, assignment);
        return job;
    });
}

CEffectJob MakeCheckedJob(const CJobLibrary& library, const std::string& effect,
                          const SParameterOptions& options) {
    CEffectJob job = MakeJob(library, effect, options);
    WithCliErrors(effect, [&] { job.CheckResources(); });
    return job;
}

CRecipe MakeCheckedRecipe(const CJobLibrary& library, const SWorkOptions& options) {
    if (options.recipe.empty()) {
        if (options.effect.empty())
            throw CCliError(EExit::Usage, "EFFECT is required", "see \"cmdtexture --help\"");
        return CRecipe(MakeCheckedJob(library, options.effect, options.parameters));
    }
    if (!options.effect.empty()) {
        throw CCliError(EExit::Usage, Tr("--recipe: the effect {} is given, too", options.effect),
                        "a recipe names its effects");
    }
    return WithCliErrors({}, [&] { return CRecipe::Read(library, options.recipe); });
}

void FitRecipe(CRecipe& recipe, CSize canvas, CSize picture) {
    const auto& steps = recipe.Steps();
    WithCliErrors(steps.size() == 1 ? steps[0].job.Name() : "", [&] {
        recipe.SetCanvas(canvas);
        recipe.CheckMasks(picture);
    });
}

CRowIteratorBands RunRecipe(CRecipe& recipe, CRowIteratorBands pixels,
                            const CRowIterator& selection, IProgressSink& progress) {
    const SJobResult result = recipe.Run(std::move(pixels), selection, &progress);
    if (result.error) Throw(*result.error, {});
    return result.image;
}

void SetCanvas(CEffectJob& job, const std::string& effect, CSize canvas) {
    WithCliErrors(effect, [&] { job.SetCanvas(canvas); });
}

bool EditJob(CEffectJob& job) {
    bool accepted = false;
    try {
        accepted = job.Edit();
    } catch (const CJobError& error) {
        if (interruption::Requested()) throw CInterrupted();
        Throw(error, job.Name());
    }
    if (interruption::Requested()) throw CInterrupted();
    return accepted;
}

CRowIteratorBands RunJob(const CEffectJob& job, CProgress& progress) {
    const SJobResult result = job.Run(&progress);
    if (interruption::Requested()) throw CInterrupted();
    if (result.error) Throw(*result.error, job.Name());
    return result.image;
}

std::string SavePreset(const CEffectJob& job, const std::string& name, bool overwrite) {
    try {
        return job.SavePreset(name, overwrite);
    } catch (const CJobError& error) {
        if (error.Fault() == EJobFault::Refused) Throw(error, job.Name());
        throw CCliError(EExit::Output, error.what(),
                        overwrite ? "" : Tr("--overwrite replaces an existing preset"));
    }
}

std::string AddResource(const CRowIteratorBands& photo,
                        const user_resources::SNewResource& wanted) {
    return WithCliErrors({}, [&] {
        return user_resources::Add(photo, wanted, *imagefile::MakePictureFiles()).string();
    });
}

void RemoveResource(const std::filesystem::path& file) {
    WithCliErrors({}, [&] { user_resources::Remove(file); });
}

std::string PrecisionWarning(const CEffectJob& job, CNPixelFormat format) {
    if (!format.Is16bit() || job.Describe().works_at_16_bits) return {};
    return Tr("{} works with 8-bit precision; what it changes of a 16-bit image has no finer steps",
              job.Name());
}

void WarnOfPrecision(const CEffectJob& job, CNPixelFormat format) {
    const std::string warning = PrecisionWarning(job, format);
    if (!warning.empty()) messages::Warn(warning);
}
