#include "app/cli/CSession.h"

#include <fmt/format.h>

#include <cstdio>

#include "app/cli/CliError.h"
#include "hostlib/job/NearestName.h"
#include "hostlib/language/Languages.h"
#include "hostlib/settings/GlobalSettings.h"

namespace {

std::string LanguageFor(const std::string& wanted, const SInstallation& installation) {
    const auto available = languages::Available(installation.data);
    if (wanted.empty()) return languages::Preferred(available);
    for (const std::string& code : available) {
        if (SameName(code, wanted)) return code;
    }
    throw CCliError(EExit::Usage, fmt::format("--language {}: no such language", wanted),
                    fmt::format("there are {}", fmt::join(available, ", ")));
}

}  // namespace

CSession::CSession(const SSessionOptions& options) : installation_(FindInstallation()) {
    if (options.range_scale != 0) SetRangeScale(options.range_scale, true);
    try {
        language_ = LanguageFor(options.language, installation_);
        module_ = std::make_unique<CEffectModule>(installation_, language_);
    } catch (const CNException& error) {
        throw CCliError(EExit::Effect,
                        fmt::format("the module cannot be loaded: {}", error.what()));
    }
}

TRef<CCmdEffect> CSession::Effect(const std::string& name) const {
    for (const std::string& known : module_->Names()) {
        if (SameName(known, name)) return module_->CreateCommand(known);
    }
    const std::string nearest = NearestName(name, module_->Names());
    throw CCliError(EExit::Usage, fmt::format("unknown effect \"{}\"", name),
                    nearest.empty() ? "\"cmdtexture list\" shows all"
                                    : fmt::format("did you mean \"{}\"? \"cmdtexture list\" shows "
                                                  "all",
                                                  nearest));
}

CSize ParseSize(const std::string& text, const std::string& option) {
    CSize size;
    char rest = 0;
    const bool read = std::sscanf(text.c_str(), "%dx%d%c", &size.cx, &size.cy, &rest) == 2;
    constexpr int kLargest = 65535;
    if (!read || size.cx < 1 || size.cy < 1 || size.cx > kLargest || size.cy > kLargest) {
        throw CCliError(EExit::Usage, fmt::format("{} {}: not a size", option, text),
                        "a size is written WxH, each from 1 to 65535: 1920x1080");
    }
    return size;
}

CPoint ParsePlace(const std::string& text, const std::string& option) {
    CPoint place;
    char rest = 0;
    const bool read = std::sscanf(text.c_str(), "%d,%d%c", &place.x, &place.y, &rest) == 2;
    constexpr int kFarthest = 1000000;
    if (!read || std::abs(place.x) > kFarthest || std::abs(place.y) > kFarthest) {
        throw CCliError(EExit::Usage, fmt::format("{} {}: not a place", option, text),
                        "a place is written X,Y in pixels from the canvas's top left: 100,50");
    }
    return place;
}
