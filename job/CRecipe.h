#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "hostlib/graphics/LayerBlend.h"
#include "job/CEffectJob.h"

class CJobLibrary;
struct IPictureFiles;

// One effect of a recipe, and how its result is laid over the picture that it started from.
struct SRecipeStep {
    CEffectJob job;
    std::filesystem::path mask = {};  // a picture whose brightness limits the step; empty: none
    double opacity = 1;               // 0 to 1
    ENBlendMode blend = ENBlendMode::Normal;
};

// Effects that run one after another on one picture: a JSON array of objects, each with "effect"
// and, if wanted, "preset", "parameters" (names to values), "mask" (a picture file), "opacity" (0
// to 1, or "60%") and "blend" ("normal", "multiply", "screen", "overlay", "soft-light",
// "luminosity"). Used by one thread at a time.
class CRecipe {
  public:
    // The recipe of this one step.
    explicit CRecipe(CEffectJob job);
    // Reads a recipe and checks all of it: names, values, presets, patterns, textures, masks. Files
    // that it names are looked for from the recipe's own folder, or from `folder`. Throws
    // CJobError: Refused and those of CEffectJob, saying which step.
    static CRecipe Read(const CJobLibrary& library, const std::filesystem::path& file);
    static CRecipe Parse(const CJobLibrary& library, const std::string& text,
                         const std::filesystem::path& folder = {});
    CRecipe Copy() const;

    const std::vector<SRecipeStep>& Steps() const { return steps_; }
    // "Sandstone, Fur".
    std::string Title() const;
    // The steps with all their values.
    nlohmann::ordered_json ToJson() const;

    // As CEffectJob::SetCanvas, for every step.
    void SetCanvas(CSize canvas);
    // Refuses a size of picture that a mask does not have. Throws CJobError: Refused, Unreadable.
    void CheckMasks(CSize picture) const;
    // Runs the steps on a picture, which lies at its origin on the canvas; without SetCanvas it is
    // the canvas. `selection`, 8-bit grey of its size or unattached, limits the steps that have no
    // mask. Colours of a step that blends otherwise than normally are mixed before its selection
    // limits it. The sink may be null.
    SJobResult Run(CRowIteratorBands picture, const CRowIterator& selection = {},
                   IProgressSink* sink = nullptr);

  private:
    CRecipe() = default;
    static CRecipe Of(const CJobLibrary& library, const nlohmann::ordered_json& steps,
                      const std::filesystem::path& folder);
    void CheckMask(const SRecipeStep& step, const CSize* picture) const;
    CRowIterator SelectionFor(const SRecipeStep& step, const CRowIteratorBands& picture,
                              const CRowIterator& selection) const;

    std::shared_ptr<const IPictureFiles> pictures_;  // reads masks; may be null
    std::vector<SRecipeStep> steps_;
};
