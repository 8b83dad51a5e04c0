#pragma once

#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/ICommandExecutionContext.h"
#include "host/core/TRef.h"
#include "host/core/TUnknownImpl.h"
#include "job/IPictureFiles.h"
#include "job/Installation.h"

// Patterns and textures in folders. A folder of the library holds `patterns/` and `textures/`, or
// pictures directly, which then serve as both; a picture's name is its file's name without the
// extension, its category the folder it lies in below, if any. Folders are looked through in order,
// so a picture of an earlier one hides its namesake in a later one. Which there are is looked up
// each time; the pictures that were decoded last are kept, for as long as their files stay the
// same.
class CFileResourceLibrary : public TUnknownImpl<CFileResourceLibrary, IResourceLibrary> {
  public:
    static constexpr int kPatterns = 10;
    static constexpr int kTextures = 44;

    struct SFile {
        std::string name;
        std::string category;
        std::filesystem::path file;
    };

    // Without a decoder there are no pictures.
    CFileResourceLibrary(std::vector<std::filesystem::path> folders,
                         std::shared_ptr<const IPictureFiles> pictures)
        : folders_(std::move(folders)), pictures_(std::move(pictures)) {}

    CErrorAutoThrow LoadImage(int type, const CString& name, CRowIteratorBands& image) override;
    std::vector<SResourceEntry> Entries(int type) override;
    CErrorAutoThrow LoadThumbnail(int type, const CString& name, CRowIteratorBands& image) override;

    // The decoder; null without one.
    const std::shared_ptr<const IPictureFiles>& Pictures() const { return pictures_; }
    // Every picture of a type, ordered by category and name.
    std::vector<SFile> Files(int type) const;
    // The picture of a name, letter case ignored; of the empty name, the first, of the category if
    // one is given.
    std::optional<SFile> Find(int type, const std::string& name,
                              const std::string& category = "") const;

  private:
    struct SDecoded {
        std::filesystem::path file;
        std::filesystem::file_time_type time;
        std::uintmax_t bytes = 0;
        CRowIteratorBands picture;  // shared with those who got it, and never written
    };
    CRowIteratorBands Decode(const std::filesystem::path& file);

    std::vector<std::filesystem::path> folders_;
    std::shared_ptr<const IPictureFiles> pictures_;
    std::mutex mutex_;
    std::deque<SDecoded> decoded_;  // the latest first
};

// The pictures of an installation, before them the user's own, and first those of other folders.
TRef<CFileResourceLibrary> OpenResources(const SInstallation& installation,
                                         std::vector<std::filesystem::path> folders,
                                         std::shared_ptr<const IPictureFiles> pictures);
