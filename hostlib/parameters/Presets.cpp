#include "hostlib/parameters/Presets.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <nlohmann/json.hpp>

#include "host/core/CErrorAutoThrow.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/COutputFile.h"
#include "hostlib/system/ConfigFolders.h"
#include "hostlib/system/StrictJson.h"

namespace presets {
namespace {

constexpr std::uintmax_t kLargest = 1 << 20;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& what) {
    throw CNException(TolmErrorCode::ReadFailed, fmt::format("{}: {}", DisplayText(file), what));
}

std::filesystem::path Home() {
    std::filesystem::path home = folders::UserConfig();
    if (home.empty()) {
        throw CNException(TolmErrorCode::ReadFailed,
                          Tr("there is no home folder for presets; set HOME or XDG_CONFIG_HOME"));
    }
    return home;
}

std::filesystem::path FolderOf(const std::string& effect) { return Home() / "presets" / effect; }

std::filesystem::path LastValuesOf(const std::string& effect) {
    return Home() / "last" / (effect + ".json");
}

// In full or not at all, whatever happens; what it replaces keeps its permissions.
void Write(const std::filesystem::path& file, const nlohmann::ordered_json& values,
           bool overwrite) {
    const std::filesystem::path folder = file.parent_path();
    std::error_code error;
    if (!folder.empty()) std::filesystem::create_directories(folder, error);
    try {
        const std::string text = values.dump(2) + '\n';
        COutputFile out(file, {.overwrite = overwrite, .input = {}});
        out.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        out.Publish();
    } catch (const CFileError& failure) {
        throw CNException(TolmErrorCode::ReadFailed, failure.what());
    }
}

}  // namespace

nlohmann::ordered_json Read(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) Fail(file, Tr("no such preset file"));
    try {
        return ReadStrictJson(file, kLargest);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        Fail(file, Tr("the preset is not usable: {}", failure.what()));
    }
}

std::filesystem::path FileOf(const std::string& effect, const std::string& name) {
    const bool usable = !name.empty() && name[0] != '.' && name.find('/') == std::string::npos &&
                        name.size() <= 200;
    if (!usable) {
        throw CNException(TolmErrorCode::UnusableInput,
                          Tr("\"{}\" is not a name for a preset", DisplayText(name)));
    }
    return FolderOf(effect) / (name + ".json");
}

std::vector<std::string> Names(const std::string& effect) {
    std::vector<std::string> names;
    if (folders::UserConfig().empty()) return names;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(FolderOf(effect), none)) {
        if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::filesystem::path Save(const std::string& effect, const std::string& name,
                           const nlohmann::ordered_json& values, bool overwrite) {
    std::filesystem::path file = FileOf(effect, name);
    std::error_code error;
    if (!overwrite && std::filesystem::exists(file, error)) {
        Fail(file, Tr("a preset of this name exists"));
    }
    Write(file, values, overwrite);
    return file;
}

void Remove(const std::string& effect, const std::string& name) {
    const std::filesystem::path file = FileOf(effect, name);
    std::error_code error;
    if (!std::filesystem::remove(file, error)) {
        Fail(file, error ? Tr("the preset cannot be deleted") : Tr("no such preset file"));
    }
}

void Remember(const std::string& effect, const nlohmann::ordered_json& values) {
    Write(LastValuesOf(effect), values, true);
}

nlohmann::ordered_json Remembered(const std::string& effect) {
    try {
        return Read(LastValuesOf(effect));
    } catch (const CNException&) {
        return nlohmann::ordered_json::object();
    }
}

}  // namespace presets
