#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "job/CJobError.h"
#include "job/EffectInfo.h"

class CJobLibrary;

// How a run ended: with a picture, or with the reason why there is none.
struct SJobResult {
    CRowIteratorBands image;
    std::optional<CJobError> error;
};

// One effect with its values, and the picture to run it on. A job is made by its library and used
// by one thread at a time; Run may be called by several at once.
class CEffectJob {
  public:
    CEffectJob(CEffectJob&& other) noexcept;
    CEffectJob& operator=(CEffectJob&& other) noexcept;
    ~CEffectJob();
    // Another job of the effect with the same values, canvas and picture.
    CEffectJob Copy() const;

    // The component name, and what the effect is, ranges being those of the canvas.
    const std::string& Name() const;
    SEffectInfo Describe() const;

    // Sets a parameter by name, in any letter case, from a text; or all that a JSON object names,
    // or none of them. Throws CJobError, Refused, which says what would be right.
    void Set(const std::string& parameter, const std::string& value);
    void Set(const nlohmann::ordered_json& values);
    // Sets the values of a preset: a file, or the name of one that the user saved or that ships.
    // Values that follow the picture's size do so with the canvas. Throws CJobError: Preset,
    // Refused.
    void TakePreset(const std::string& preset);
    // Saves the values as the user's preset of a name and answers its file. Throws CJobError,
    // Preset; also when there is one of the name, unless `overwrite` is set.
    std::string SavePreset(const std::string& name, bool overwrite) const;
    // The same from the text of a JSON object. Throws CJobError, Refused.
    void SetJson(const std::string& values);
    // Brings all values back to their defaults.
    void Reset();
    // A value as a text that sets it. Throws CJobError, Refused. All values by name.
    std::string Value(const std::string& parameter) const;
    nlohmann::ordered_json Values() const;
    // Refuses patterns and textures that there are not, before a run would. Throws CJobError,
    // UnknownResource.
    void CheckResources() const;

    // The document's size in pixels, which ranges may follow. Throws CJobError, Refused, when a
    // value that was set does not fit it. Without a call the canvas is the first picture's size;
    // 0 by 0 brings that back and forgets the picture.
    void SetCanvas(CSize canvas);
    // The picture, at its place on the canvas (its origin), and the selection, 8-bit grey of its
    // size (unattached: everything). Pixels are shared with the caller, and never written.
    void SetPicture(const CRowIteratorBands& image, const CRowIterator& selection = {});
    // Lets the user set the values in the effect's dialog, with the toolkit that is installed. The
    // picture may be set while it is open. False when the user cancelled; throws CJobError, Effect.
    bool Edit();

    // Runs the effect; values, canvas and picture stay as they are. The sink may be null.
    SJobResult Run(IProgressSink* sink = nullptr) const;

  private:
    friend class CJobLibrary;
    struct SParts;
    explicit CEffectJob(std::unique_ptr<SParts> parts);
    std::unique_ptr<SParts> parts_;
};
