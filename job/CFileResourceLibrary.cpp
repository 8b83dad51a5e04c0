#include "job/CFileResourceLibrary.h"

#include <fmt/format.h>

#include <algorithm>

#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "job/Thumbnails.h"
#include "job/UserResources.h"

namespace {

constexpr std::size_t kMostKept = 2;                 // a pattern and a texture
constexpr std::uint64_t kLargestKept = 64ull << 20;  // bytes of pixels

std::filesystem::path FolderFor(const std::filesystem::path& folder, int type) {
    const char* name = type == CFileResourceLibrary::kPatterns ? "patterns" : "textures";
    std::error_code none;
    return std::filesystem::is_directory(folder / name, none) ? folder / name : folder;
}

// The pictures of a folder and of the folders right below it, which are categories.
void Collect(const std::filesystem::path& folder, const std::string& category,
             const IPictureFiles& pictures, std::vector<CFileResourceLibrary::SFile>& files) {
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        if (entry.is_directory(none) && category.empty()) {
            Collect(entry.path(), entry.path().filename().string(), pictures, files);
        } else if (entry.is_regular_file(none) && pictures.IsPicture(entry.path())) {
            files.push_back({entry.path().stem().string(), category, entry.path()});
        }
    }
}

}  // namespace

std::vector<CFileResourceLibrary::SFile> CFileResourceLibrary::Files(int type) const {
    std::vector<SFile> all;
    if (!pictures_) return all;
    for (const std::filesystem::path& folder : folders_) {
        std::vector<SFile> found;
        Collect(FolderFor(folder, type), "", *pictures_, found);
        for (SFile& file : found) {
            const bool hidden = std::any_of(all.begin(), all.end(), [&](const SFile& earlier) {
                return SameName(earlier.name, file.name);
            });
            if (!hidden) all.push_back(std::move(file));
        }
    }
    std::sort(all.begin(), all.end(), [](const SFile& a, const SFile& b) {
        return std::tie(a.category, a.name) < std::tie(b.category, b.name);
    });
    return all;
}

std::optional<CFileResourceLibrary::SFile> CFileResourceLibrary::Find(
    int type, const std::string& name, const std::string& category) const {
    for (const SFile& file : Files(type)) {
        const bool first = category.empty() || SameName(file.category, category);
        if (name.empty() ? first : SameName(file.name, name)) return file;
    }
    return std::nullopt;
}

CErrorAutoThrow CFileResourceLibrary::LoadImage(int type, const CString& name,
                                                CRowIteratorBands& image) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        const std::optional<SFile> found = Find(type, ToUtf8(name));
        if (!found) {
            return {TolmErrorCode::NotFound, Tr("there is no picture \"{}\"", ToUtf8(name))};
        }
        image = Decode(found->file);
        return {};
    });
}

// Who applies one pattern to many pictures would otherwise spend more on decoding than on the
// effect.
CRowIteratorBands CFileResourceLibrary::Decode(const std::filesystem::path& file) {
    SDecoded fresh{
        file, std::filesystem::last_write_time(file), std::filesystem::file_size(file), {}};
    {
        const std::scoped_lock lock(mutex_);
        for (const SDecoded& kept : decoded_) {
            const bool is_same =
                kept.file == file && kept.time == fresh.time && kept.bytes == fresh.bytes;
            if (is_same) return kept.picture;
        }
    }
    fresh.picture = pictures_->Read(file);
    const auto bytes = static_cast<std::uint64_t>(fresh.picture.Stride()) *
                       static_cast<std::uint64_t>(fresh.picture.GetHeight());
    if (bytes > kLargestKept) return fresh.picture;
    const std::scoped_lock lock(mutex_);
    std::erase_if(decoded_, [&](const SDecoded& kept) { return kept.file == file; });
    decoded_.push_front(fresh);
    if (decoded_.size() > kMostKept) decoded_.pop_back();
    return fresh.picture;
}

CErrorAutoThrow CFileResourceLibrary::LoadThumbnail(int type, const CString& name,
                                                    CRowIteratorBands& image) {
    const std::optional<SFile> found = Find(type, ToUtf8(name));
    if (found && thumbnails::Load(*pictures_, found->file, image)) return {};
    CErrorAutoThrow error = LoadImage(type, name, image);
    if (!error.Failed()) image = thumbnails::Make(*pictures_, found->file, image);
    return error;
}

std::vector<SResourceEntry> CFileResourceLibrary::Entries(int type) {
    std::vector<SResourceEntry> entries;
    for (const SFile& file : Files(type)) {
        entries.push_back({FromUtf8(file.name), FromUtf8(file.category)});
    }
    return entries;
}

TRef<CFileResourceLibrary> OpenResources(const SInstallation& installation,
                                         std::vector<std::filesystem::path> folders,
                                         std::shared_ptr<const IPictureFiles> pictures) {
    folders.push_back(user_resources::Folder());
    folders.push_back(installation.data / "resources");
    return TRef<CFileResourceLibrary>(
        new CFileResourceLibrary(std::move(folders), std::move(pictures)));
}
