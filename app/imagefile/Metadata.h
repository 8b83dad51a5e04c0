#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "app/imagefile/CExif.h"
#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"
#include "app/imagefile/VipsSession.h"

namespace imagefile {

// The header fields of an image without pixels.
struct SMetadata {
    TVips<VipsImage> header;
};

// The metadata of an image that was just opened from `descriptor`, as they hold once the picture
// is upright.
CMetadata TakeMetadata(VipsImage* opened, ENKind kind, int descriptor);

// Adds EXIF data that the library did not read itself.
void AddExif(VipsImage* header, const CExif& exif);

// Gives the metadata to an image that is about to be saved.
void GiveMetadata(const SMetadata& metadata, VipsImage* image);

// A field of bytes; empty when there is none. Valid as long as the image.
std::span<const std::uint8_t> Blob(VipsImage* image, const char* name);

// What of the metadata did not arrive in a file, for people: "the EXIF data" and so on.
std::vector<std::string> LostMetadata(const SMetadata& wanted, const SMetadata& written);

}  // namespace imagefile
