#pragma once

#include <filesystem>

#include "job/IPictureFiles.h"

// Small versions of pictures, kept in the user's cache folder so that a library of large pictures
// can be browsed. One that is older than its picture, or of a picture of another size, is not used.
namespace thumbnails {

inline constexpr int kSide = 128;  // pixels of the longer side, at most

// The stored thumbnail of a file; false when there is none that is up to date.
bool Load(const IPictureFiles& pictures, const std::filesystem::path& file,
          CRowIteratorBands& thumbnail);
// Makes the thumbnail of a file's picture and stores it; a cache that cannot be written is none.
CRowIteratorBands Make(const IPictureFiles& pictures, const std::filesystem::path& file,
                       const CRowIteratorBands& picture);

}  // namespace thumbnails
