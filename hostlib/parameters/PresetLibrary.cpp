#include "hostlib/parameters/PresetLibrary.h"

#include <fmt/ranges.h>
#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "host/language/CConnectLanguage.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/parameters/ParameterValues.h"
#include "hostlib/parameters/Presets.h"
#include "hostlib/system/ConfigFolders.h"

namespace presets {
namespace {

constexpr const char* kScale = "$scale";

struct SName {
    std::string name, description;
};
using Names = std::map<std::string, SName>;  // by "EFFECT/FILE"

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// What a language calls the presets; nothing where it has no file. Lines of another form are
// skipped.
Names ReadNames(const std::filesystem::path& language) {
    Names names;
    std::ifstream in(language / "presets.txt");
    for (std::string line; std::getline(in, line);) {
        const std::size_t equals = line.find('=');
        if (line.starts_with('#') || equals == std::string::npos) continue;
        const std::size_t bar = std::min(line.find('|', equals), line.size());
        names[Trimmed(line.substr(0, equals))] = {
            Trimmed(line.substr(equals + 1, bar - equals - 1)),
            bar < line.size() ? Trimmed(line.substr(bar + 1)) : ""};
    }
    return names;
}

// The folder of the language that is selected, and of English; beside them lie all others.
std::filesystem::path Language() { return FromHostPath(CConnectLanguage::GetPath()); }
std::filesystem::path English() { return FromHostPath(CConnectLanguage::GetAltPath()); }

std::vector<SPreset> Shipped(const std::string& effect) {
    const Names own = ReadNames(Language());
    const Names english = ReadNames(English());
    const std::filesystem::path folder = English().parent_path().parent_path() / "presets" / effect;
    std::vector<SPreset> list;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        if (entry.path().extension() != ".json") continue;
        SPreset preset{entry.path().stem(), entry.path().stem(), "", entry.path(), true};
        for (const Names* names : {&own, &english}) {
            const auto found = names->find(effect + '/' + preset.id);
            if (found == names->end()) continue;
            preset.name = found->second.name;
            preset.description = found->second.description;
            break;
        }
        list.push_back(std::move(preset));
    }
    std::sort(list.begin(), list.end(),
              [](const SPreset& a, const SPreset& b) { return a.name < b.name; });
    return list;
}

// Whether any language gives the preset this name.
bool IsCalled(const std::string& effect, const SPreset& preset, const std::string& name) {
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(English().parent_path(), none)) {
        const Names names = ReadNames(entry.path());
        const auto found = names.find(effect + '/' + preset.id);
        if (found != names.end() && SameName(found->second.name, name)) return true;
    }
    return false;
}

int IndexOf(IParameterRepository& repository, const std::string& name) {
    const IParameter* wanted = &parameters::Find(repository, name);
    int index = 0;
    while (repository.At(index) != wanted) ++index;
    return index;
}

[[noreturn]] void RefuseScale() {
    throw parameters::CRefused(
        Tr("\"$scale\" does not say what the preset's pixels are"),
        Tr("it is written {\"pixels\": 1000000, \"parameters\": [\"NAME\", ...]}, of parameters "
           "that the preset sets to numbers"));
}

}  // namespace

std::vector<SPreset> List(const std::string& effect) {
    std::vector<SPreset> list;
    for (const std::string& name : presets::Names(effect)) {
        list.push_back({name, name, "", FileOf(effect, name), false});
    }
    for (SPreset& preset : Shipped(effect)) list.push_back(std::move(preset));
    return list;
}

std::optional<SPreset> Find(const std::string& effect, const std::string& name) {
    const std::vector<SPreset> list = List(effect);
    const auto find = [&](auto&& matches) {
        const auto found = std::find_if(list.begin(), list.end(), matches);
        return found == list.end() ? std::nullopt : std::optional(*found);
    };
    if (auto own = find([&](const SPreset& p) { return !p.ships && p.id == name; })) return own;
    if (auto by_id = find([&](const SPreset& p) { return p.ships && SameName(p.id, name); })) {
        return by_id;
    }
    return find([&](const SPreset& p) { return p.ships && IsCalled(effect, p, name); });
}

std::string Hint(const std::string& wanted, const std::vector<SPreset>& known) {
    std::vector<std::string> ids, names;
    for (const SPreset& preset : known) {
        ids.push_back(preset.id);
        names.insert(names.end(), {preset.id, preset.name});
    }
    const std::string nearest = DidYouMean(wanted, names);
    return nearest.empty() ? Tr("there are {}", fmt::join(ids, ", ")) : nearest;
}

std::int64_t SScaled::For(CSize picture, const IParameter& parameter) const {
    const double size = static_cast<double>(picture.cx) * picture.cy;
    const double factor = size > 0 ? std::sqrt(size / pixels) : 1;
    return std::clamp<std::int64_t>(std::llround(value * factor), parameter.Minimum(),
                                    std::max(parameter.Minimum(), parameter.Maximum()));
}

std::map<int, SScaled> TakeScaled(nlohmann::ordered_json& preset,
                                  IParameterRepository& repository) {
    std::map<int, SScaled> scaled;
    if (!preset.is_object() || !preset.contains(kScale)) return scaled;
    const nlohmann::ordered_json scale = preset[kScale];
    preset.erase(kScale);
    try {
        const double pixels = scale.at("pixels").get<double>();
        if (!(pixels >= 1)) RefuseScale();
        for (const auto& name : scale.at("parameters")) {
            const double value = preset.at(name.get<std::string>()).get<double>();
            scaled[IndexOf(repository, name)] = {value, pixels};
        }
    } catch (const nlohmann::json::exception&) {
        RefuseScale();
    }
    return scaled;
}

nlohmann::ordered_json ForPicture(nlohmann::ordered_json preset, IParameterRepository& repository,
                                  CSize picture) {
    for (const auto& [index, value] : TakeScaled(preset, repository)) {
        const IParameter& parameter = *repository.At(index);
        for (auto& [name, given] : preset.items()) {
            if (SameName(name, ToUtf8(parameter.Name()))) given = value.For(picture, parameter);
        }
    }
    return preset;
}

}  // namespace presets
