#pragma once

#include <string>
#include <vector>

#include "app/cli/CProgress.h"
#include "job/CJobLibrary.h"
#include "job/CRecipe.h"
#include "job/UserResources.h"

// How the subcommands use jobs: the user's options in, errors out as CCliError and CInterrupted.

// Options that every subcommand which talks about effects takes.
struct SSessionOptions {
    std::string language;  // a code; empty: the environment's
    int range_scale = 0;   // per cent that the scaled maxima grow; 0: as the registry says
};

// Values for parameters: a preset first, then single values over it.
struct SParameterOptions {
    std::vector<std::string> values = {};  // NAME=VALUE
    std::string preset = {};               // a file, or the name of a saved preset
};

// What is to be done to a picture: an effect with values, or a recipe.
struct SWorkOptions {
    std::string effect = {};
    SParameterOptions parameters = {};
    std::string recipe = {};  // a file
};

CJobLibrary OpenJobs(const SSessionOptions& options,
                     const std::vector<std::string>& resource_folders = {});
// The installation's pictures with the user's folders before them.
TRef<CFileResourceLibrary> OpenPictures(const std::vector<std::string>& resource_folders);

// The component name that the user means.
std::string EffectName(const CJobLibrary& library, const std::string& name);
// A job of the effect with what the user set, checked as far as it can be without a picture.
CEffectJob MakeJob(const CJobLibrary& library, const std::string& effect,
                   const SParameterOptions& options);
// The same, pictures of the library included.
CEffectJob MakeCheckedJob(const CJobLibrary& library, const std::string& effect,
                          const SParameterOptions& options);
// The work as a recipe, checked in the same way.
CRecipe MakeCheckedRecipe(const CJobLibrary& library, const SWorkOptions& options);
// What depends on the picture is checked, and the ranges of values follow the canvas.
void FitRecipe(CRecipe& recipe, CSize canvas, CSize picture);
// Takes the pixels, which need not outlive the first step.
CRowIteratorBands RunRecipe(CRecipe& recipe, CRowIteratorBands pixels,
                            const CRowIterator& selection, IProgressSink& progress);
// `effect` is the name that the user gave.
void SetCanvas(CEffectJob& job, const std::string& effect, CSize canvas);
bool EditJob(CEffectJob& job);
CRowIteratorBands RunJob(const CEffectJob& job, CProgress& progress);
// The file of a saved preset.
std::string SavePreset(const CEffectJob& job, const std::string& name, bool overwrite);

// Takes a photograph into the user's library, answering the new file; or a file out of it.
std::string AddResource(const CRowIteratorBands& photo, const user_resources::SNewResource& wanted);
void RemoveResource(const std::filesystem::path& file);

// What happens when an effect works on 16-bit pictures with 8-bit precision; empty when it does
// not.
std::string PrecisionWarning(const CEffectJob& job, CNPixelFormat format);
void WarnOfPrecision(const CEffectJob& job, CNPixelFormat format);
