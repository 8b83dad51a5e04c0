#pragma once

#include <map>

#include "host/core/TRef.h"
#include "hostlib/commands/CDocument.h"
#include "hostlib/parameters/ParameterValues.h"
#include "hostlib/parameters/PresetLibrary.h"
#include "hostlib/settings/GlobalSettings.h"
#include "job/CEffectModule.h"
#include "job/CJobLibrary.h"

// What a library's copies and jobs share; it never changes.
struct CJobLibrary::SShared {
    SInstallation installation;
    std::string language;
    std::optional<int> range_scale;
    TRef<CFileResourceLibrary> resources;
    std::unique_ptr<CEffectModule> module;
};

// While it lives, the host's services, of which the process has one each, give this thread the
// library's language and range scale; they belong to it alone for so long. Texts are loaded and
// parameters defined within one.
class CJobLibrary::CScope {
  public:
    CScope(const SInstallation& installation, const std::string& language,
           std::optional<int> range_scale);
    explicit CScope(const SShared& shared)
        : CScope(shared.installation, shared.language, shared.range_scale) {}
    ~CScope();
    CScope(const CScope&) = delete;
    CScope& operator=(const CScope&) = delete;

  private:
    std::optional<SRangeScale> scale_before_;
    std::optional<CSelectedLanguage> language_;
};

struct CEffectJob::SParts {
    std::shared_ptr<CJobLibrary::SShared> library;  // first: the module outlives the command
    std::string name;
    TRef<CCmdEffect> command;
    std::map<int, parameters::SValue> given;  // what was set, by index
    // Of these, the values of a preset that follow the canvas's size.
    std::map<int, presets::SScaled> scaled;
    TRef<CDocument> document;  // of the canvas, with the picture; empty without a canvas

    IParameterRepository& Repository() const { return *command->BoundRepository(); }
    // Defines the parameters for the canvas; those that were set keep their values.
    void Define();
    // Keeps what was set: values that are set one by one follow nothing.
    void Keep(int index, const parameters::SValue& value);
    // The values of the preset for the canvas there is.
    void Scale();
};
