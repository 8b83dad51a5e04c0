#include "app/resources/CFileResourceLibrary.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"
#include "app/resources/Thumbnails.h"
#include "hostlib/job/NearestName.h"

namespace {

std::filesystem::path FolderFor(const std::filesystem::path& folder, int type) {
    const char* name = type == CFileResourceLibrary::kPatterns ? "patterns" : "textures";
    std::error_code none;
    return std::filesystem::is_directory(folder / name, none) ? folder / name : folder;
}

// The pictures of a folder and of the folders right below it, which are categories.
void Collect(const std::filesystem::path& folder, const std::string& category,
             std::vector<CFileResourceLibrary::SFile>& files) {
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        if (entry.is_directory(none) && category.empty()) {
            Collect(entry.path(), entry.path().filename().string(), files);
        } else if (entry.is_regular_file(none) && imagefile::KindByExtension(entry.path())) {
            files.push_back({entry.path().stem().string(), category, entry.path()});
        }
    }
}

}  // namespace

std::vector<CFileResourceLibrary::SFile> CFileResourceLibrary::Files(int type) const {
    std::vector<SFile> all;
    for (const std::filesystem::path& folder : folders_) {
        std::vector<SFile> found;
        Collect(FolderFor(folder, type), "", found);
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
    int type, const std::string& name) const {
    for (const SFile& file : Files(type)) {
        if (name.empty() || SameName(file.name, name)) return file;
    }
    return std::nullopt;
}

CErrorAutoThrow CFileResourceLibrary::Load(int type, const CString& name,
                                           CRowIteratorBands& image) const {
    const std::optional<SFile> found = Find(type, ToUtf8(name));
    if (!found) {
        return {TolmErrorCode::NotFound, fmt::format("there is no picture \"{}\"", ToUtf8(name))};
    }
    try {
        image = imagefile::ReadImage(found->file).pixels;
        return {};
    } catch (const imagefile::CImageFileError& error) {
        return {TolmErrorCode::ReadFailed, error.what()};
    }
}

CErrorAutoThrow CFileResourceLibrary::LoadImage(int type, const CString& name,
                                                CRowIteratorBands& image) {
    CErrorAutoThrow error = Load(type, name, image);
    const std::lock_guard lock(mutex_);
    failure_ = error.Failed() ? error.Text() : "";
    return error;
}

std::string CFileResourceLibrary::LastFailure() const {
    const std::lock_guard lock(mutex_);
    return failure_;
}

CErrorAutoThrow CFileResourceLibrary::LoadThumbnail(int type, const CString& name,
                                                    CRowIteratorBands& image) {
    const std::optional<SFile> found = Find(type, ToUtf8(name));
    if (found && thumbnails::Load(found->file, image)) return {};
    CErrorAutoThrow error = Load(type, name, image);
    if (!error.Failed()) image = thumbnails::Make(found->file, image);
    return error;
}

std::vector<SResourceEntry> CFileResourceLibrary::Entries(int type) {
    std::vector<SResourceEntry> entries;
    for (const SFile& file : Files(type)) {
        entries.push_back({FromUtf8(file.name), FromUtf8(file.category)});
    }
    return entries;
}
