#pragma once

#include <filesystem>
#include <memory>
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
// so a picture of an earlier one hides its namesake in a later one. What is there is read anew each
// time.
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
    std::vector<std::filesystem::path> folders_;
    std::shared_ptr<const IPictureFiles> pictures_;
};

// The pictures of an installation, before them the user's own, and first those of other folders.
TRef<CFileResourceLibrary> OpenResources(const SInstallation& installation,
                                         std::vector<std::filesystem::path> folders,
                                         std::shared_ptr<const IPictureFiles> pictures);
