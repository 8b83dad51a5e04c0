#include "job/Thumbnails.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/graphics/ImageHelpers.h"
#include "hostlib/system/ConfigFolders.h"

namespace thumbnails {
namespace {

// The name in the cache changes with the file's path, size and time, so that it is never stale.
// Empty without a cache.
std::filesystem::path CacheFile(const std::filesystem::path& file) {
    std::error_code none;
    if (folders::UserCache().empty()) return {};
    const auto time = std::filesystem::last_write_time(file, none).time_since_epoch().count();
    const auto key = fmt::format("{}\n{}\n{}", std::filesystem::absolute(file, none).string(),
                                 std::filesystem::file_size(file, none), time);
    return folders::UserCache() / "thumbnails" /
           fmt::format("{:016x}.png", std::hash<std::string>()(key));
}

}  // namespace

bool Load(const IPictureFiles& pictures, const std::filesystem::path& file,
          CRowIteratorBands& thumbnail) {
    std::error_code none;
    const std::filesystem::path cached = CacheFile(file);
    if (!std::filesystem::exists(cached, none)) return false;
    try {
        thumbnail = pictures.Read(cached);
        return true;
    } catch (const CNException&) {
        return false;
    }
}

CRowIteratorBands Make(const IPictureFiles& pictures, const std::filesystem::path& file,
                       const CRowIteratorBands& picture) {
    const double scale = std::min(
        1.0, static_cast<double>(kSide) / std::max(picture.GetWidth(), picture.GetHeight()));
    CRowIteratorBands small;
    Resample(nullptr, picture, small, static_cast<int>(picture.GetWidth() * scale),
             static_cast<int>(picture.GetHeight() * scale), false, false)
        .ThrowIfFailed();
    try {
        const std::filesystem::path cached = CacheFile(file);
        std::error_code none;
        if (cached.empty()) return small;
        std::filesystem::create_directories(cached.parent_path(), none);
        pictures.Write(cached, small);
    } catch (const CNException&) {
        // The thumbnail is shown all the same; it is made anew next time.
    }
    return small;
}

}  // namespace thumbnails
