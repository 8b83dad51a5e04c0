#include "hostlib/parameters/Presets.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

#include "host/core/CErrorAutoThrow.h"
#include "hostlib/system/ConfigFolders.h"

namespace presets {
namespace {

constexpr std::uintmax_t kLargest = 1 << 20;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& what) {
    throw CNException(TolmErrorCode::ReadFailed, fmt::format("{}: {}", file.string(), what));
}

std::filesystem::path FolderOf(const std::string& effect) {
    return folders::UserConfig() / "presets" / effect;
}

std::filesystem::path LastValuesOf(const std::string& effect) {
    return folders::UserConfig() / "last" / (effect + ".json");
}

// In full or not at all: the file is written beside its place and renamed.
void Write(const std::filesystem::path& file, const nlohmann::ordered_json& values) {
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    const std::filesystem::path part = file.string() + fmt::format(".{}.part", getpid());
    std::ofstream out(part, std::ios::binary);
    out << values.dump(2) << '\n';
    out.close();
    if (out) std::filesystem::rename(part, file, error);
    if (!out || error) {
        std::filesystem::remove(part, error);
        Fail(file, "the preset cannot be written");
    }
}

}  // namespace

nlohmann::ordered_json Read(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) Fail(file, "no such preset file");
    if (std::filesystem::file_size(file, error) > kLargest) Fail(file, "too large for a preset");
    std::ifstream in(file, std::ios::binary);
    if (!in) Fail(file, "the preset cannot be read");
    try {
        return nlohmann::ordered_json::parse(in);
    } catch (const nlohmann::json::exception&) {
        Fail(file, "the preset is not valid JSON");
    }
}

std::filesystem::path FileOf(const std::string& effect, const std::string& name) {
    const bool usable = !name.empty() && name[0] != '.' && name.find('/') == std::string::npos &&
                        name.size() <= 200;
    if (!usable) Fail(name, "not a name for a preset");
    return FolderOf(effect) / (name + ".json");
}

std::vector<std::string> Names(const std::string& effect) {
    std::vector<std::string> names;
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
        Fail(file, "a preset of this name exists");
    }
    Write(file, values);
    return file;
}

void Remove(const std::string& effect, const std::string& name) {
    const std::filesystem::path file = FileOf(effect, name);
    std::error_code error;
    if (!std::filesystem::remove(file, error)) {
        Fail(file, error ? "the preset cannot be deleted" : "no such preset file");
    }
}

void Remember(const std::string& effect, const nlohmann::ordered_json& values) {
    Write(LastValuesOf(effect), values);
}

nlohmann::ordered_json Remembered(const std::string& effect) {
    try {
        return Read(LastValuesOf(effect));
    } catch (const CNException&) {
        return nlohmann::ordered_json::object();
    }
}

}  // namespace presets
