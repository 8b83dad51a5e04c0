#include "job/CJobLibrary.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/language/CConnectLanguage.h"
#include "hostlib/language/Languages.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/parameters/Presets.h"
#include "job/SJobParts.h"

namespace {

std::string LanguageFor(const std::string& wanted, const SInstallation& installation) {
    const auto available = languages::Available(installation.data);
    if (wanted.empty()) return languages::Preferred(available);
    for (const std::string& code : available) {
        if (SameName(code, wanted)) return code;
    }
    throw CJobError(EJobFault::UnknownLanguage, Tr("there is no language \"{}\"", wanted),
                    Tr("there are {}", fmt::join(available, ", ")));
}

// Other roads name an effect within "cmdtexture:" (graphs) or "cmdtexture." (scripts).
std::string WithoutPrefix(const std::string& name) {
    for (const std::string prefix : {"cmdtexture:", "cmdtexture."}) {
        if (name.starts_with(prefix)) return name.substr(prefix.size());
    }
    return name;
}

// The loader of libraries tells its reason in words only.
bool IsWantOfMemory(const std::string& reason) {
    return reason.find("Cannot allocate memory") != std::string::npos ||
           reason.find("failed to map segment") != std::string::npos;
}

}  // namespace

CJobLibrary::CScope::CScope(const SInstallation& installation, const std::string& language,
                            std::optional<int> range_scale) {
    CConnectLanguage::GetResLock();
    try {
        language_.emplace(installation.data, language);
        if (range_scale) {
            scale_before_ = GetRangeScale();
            SetRangeScale(*range_scale, true);
        }
    } catch (...) {
        language_.reset();
        CConnectLanguage::FreeResLock();
        throw;
    }
}

CJobLibrary::CScope::~CScope() {
    if (scale_before_) SetRangeScale(scale_before_->percent, scale_before_->enabled);
    language_.reset();
    CConnectLanguage::FreeResLock();
}

CJobLibrary::CJobLibrary(SJobOptions options) : shared_(std::make_shared<SShared>()) {
    std::error_code none;
    if (!std::filesystem::exists(options.installation.module, none)) {
        throw CJobError(EJobFault::NotLoaded,
                        Tr("the module cannot be loaded: {}: no such file",
                           options.installation.module.string()),
                        Tr("CMDTEXTURE_HOME, when it is set, is the prefix of an installation"));
    }
    shared_->installation = options.installation;
    shared_->language = LanguageFor(options.language, options.installation);
    shared_->range_scale = options.range_scale;
    shared_->resources =
        OpenResources(options.installation, std::move(options.resources), options.pictures);
    try {
        const CScope scope(*shared_);
        shared_->module = std::make_unique<CEffectModule>(shared_->installation, shared_->language);
        if (!LanguageProblem().empty()) shared_->language = "EN";
    } catch (const CNException& error) {
        throw CJobError(IsWantOfMemory(error.what()) ? EJobFault::Memory : EJobFault::NotLoaded,
                        Tr("the module cannot be loaded: {}", error.what()));
    }
}

const std::vector<std::string>& CJobLibrary::Names() const { return shared_->module->Names(); }

std::string CJobLibrary::Find(const std::string& name) const {
    const std::string wanted = LooseName(WithoutPrefix(name));
    std::vector<std::string> shown = Names();
    for (const std::string& known : Names()) {
        if (LooseName(known) == wanted) return known;
    }
    for (const std::string& language : languages::Available(shared_->installation.data)) {
        const CScope scope(shared_->installation, language, std::nullopt);
        for (const std::string& known : Names()) {
            const TRef<CCmdEffect> command = shared_->module->CreateCommand(known);
            shown.push_back(ToUtf8(command->GetResourceData()->GetDisplayName()));
            if (LooseName(shown.back()) == wanted) return known;
        }
    }
    throw CJobError(EJobFault::UnknownEffect, Tr("unknown effect \"{}\"", name),
                    DidYouMean(name, shown));
}

std::vector<SEffectInfo> CJobLibrary::Effects() const {
    std::vector<SEffectInfo> effects;
    const CScope scope(*shared_);
    for (const std::string& name : Names()) {
        effects.push_back(SEffectInfo::Of(*shared_->module->CreateCommand(name)));
    }
    return effects;
}

SEffectInfo CJobLibrary::Describe(const std::string& name, std::optional<CSize> canvas) const {
    CEffectJob job = MakeJob(name);
    if (canvas) job.SetCanvas(*canvas);
    return job.Describe();
}

std::vector<presets::SPreset> CJobLibrary::Presets(const std::string& name) const {
    const CScope scope(*shared_);
    return presets::List(Find(name));
}

CEffectJob CJobLibrary::MakeJob(const std::string& name) const {
    auto parts = std::make_unique<CEffectJob::SParts>();
    parts->library = shared_;
    parts->name = Find(name);
    {
        const CScope scope(*shared_);
        parts->command = shared_->module->CreateCommand(parts->name);
    }
    parts->Define();
    return CEffectJob(std::move(parts));
}

const std::string& CJobLibrary::Language() const { return shared_->language; }
const std::string& CJobLibrary::LanguageProblem() const {
    return shared_->module->LanguageProblem();
}
const SInstallation& CJobLibrary::Installation() const { return shared_->installation; }
CFileResourceLibrary& CJobLibrary::Resources() const { return *shared_->resources; }

CSelectedLanguage CJobLibrary::SelectForWindows() const {
    return {shared_->installation.data, shared_->language};
}
