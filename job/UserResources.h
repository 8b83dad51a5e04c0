#pragma once

#include <filesystem>
#include <string>

#include "host/graphics/CRowIteratorBands.h"
#include "job/IPictureFiles.h"

// The user's own library of patterns and textures, which is looked through before the pictures that
// ship. It holds patterns/CATEGORY/ and textures/CATEGORY/ below Folder(). Failures are thrown as
// CJobError: Refused for a name or a photograph that will not do, Resource for a file that cannot
// be written or removed.
namespace user_resources {

// "resources" below the user's data folder for this program; may not exist.
std::filesystem::path Folder();

struct SNewResource {
    int type = 0;  // CFileResourceLibrary::kPatterns or kTextures
    std::string name, category;
    bool seamless = false;   // evened out and made to tile
    bool overwrite = false;  // an existing one of the user's
};
// Makes a photograph of a material into a pattern or a texture of the library; answers its file,
// which appears in full or not at all.
std::filesystem::path Add(const CRowIteratorBands& photo, const SNewResource& wanted,
                          const IPictureFiles& pictures);
// Whether a file lies in the user's library.
bool Holds(const std::filesystem::path& file);
// Removes a picture of the user's library, and its category when that is empty then.
void Remove(const std::filesystem::path& file);

}  // namespace user_resources
