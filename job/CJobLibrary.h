#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/core/Geometry.h"
#include "hostlib/language/CSelectedLanguage.h"
#include "hostlib/parameters/PresetLibrary.h"
#include "job/CEffectJob.h"
#include "job/CFileResourceLibrary.h"
#include "job/CJobError.h"
#include "job/EffectInfo.h"
#include "job/IPictureFiles.h"
#include "job/Installation.h"

// What a job library is opened with; everything may be left out.
struct SJobOptions {
    SInstallation installation = FindInstallation();
    std::string language = {};  // a code, in any letter case; empty: the environment's
    // Folders of patterns and textures that are looked through before the installation's own.
    std::vector<std::filesystem::path> resources = {};
    // Per cent that scaled maxima grow, -99 to 900; without it the user's registry says.
    std::optional<int> range_scale = {};
    // Without a decoder there are no patterns and no textures.
    std::shared_ptr<const IPictureFiles> pictures = {};
};

// The effects of an installation: names and describes them and makes jobs. Several libraries, in
// different languages and with different scales, may be open in a process, and their operations and
// those of their jobs be used on several threads at once. Copies share one library; jobs keep it
// alive.
class CJobLibrary {
  public:
    // Loads the module. Throws CJobError: NotLoaded, UnknownLanguage.
    explicit CJobLibrary(SJobOptions options = {});

    // The component names, in the module's order.
    const std::vector<std::string>& Names() const;
    // The component name that the user means by it or by a name that people see, in any of the
    // installation's languages, in any letter case and with or without spaces and hyphens. Throws
    // CJobError, UnknownEffect.
    std::string Find(const std::string& name) const;
    // All effects, without their parameters; or one, its ranges for a canvas or for none.
    std::vector<SEffectInfo> Effects() const;
    SEffectInfo Describe(const std::string& name, std::optional<CSize> canvas = {}) const;
    // The presets of an effect, with names in the library's language. Throws CJobError,
    // UnknownEffect.
    std::vector<presets::SPreset> Presets(const std::string& name) const;
    // A job of an effect, its parameters at their defaults. Throws CJobError, UnknownEffect.
    CEffectJob MakeJob(const std::string& name) const;

    // The code of the language that texts are in, and why they are in English although another one
    // was wanted; else empty.
    const std::string& Language() const;
    const std::string& LanguageProblem() const;
    const SInstallation& Installation() const;
    CFileResourceLibrary& Resources() const;
    // Makes the library's language that of the process's windows for as long as the answer lives.
    CSelectedLanguage SelectForWindows() const;

  private:
    friend class CEffectJob;
    struct SShared;
    class CScope;
    explicit CJobLibrary(std::shared_ptr<SShared> shared) : shared_(std::move(shared)) {}
    std::shared_ptr<SShared> shared_;
};
