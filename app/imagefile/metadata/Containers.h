#pragma once

#include <algorithm>
#include <string_view>

#include "app/imagefile/metadata/Metadata.h"

// The four kinds of file, each read and given its metadata in a source of its own.
namespace imagefile {

SContents ReadPngContents(int descriptor);
SContents ReadJpegContents(int descriptor);
SContents ReadWebpContents(int descriptor);
SContents ReadTiffContents(int descriptor, int page);

// Puts the corrected EXIF and XMP blocks where the file held them.
void ReplacePngBlocks(SMetadata& metadata);
void ReplaceJpegBlocks(SMetadata& metadata);
void ReplaceWebpBlocks(SMetadata& metadata);

// The IPTC data as image resources: as the file held them, or wrapped anew.
CBytes PhotoshopOf(const SMetadata& metadata);
// The profile for colours of a file that tells them by ICC profiles alone; told as a loss when
// there should be one and cannot.
CBytes ProfileFor(const SMetadata& metadata, CNPixelFormat written, CLosses& losses);

// Tells as losses what only the kind of file has a place for that the metadata come from.
void TellForeign(const SMetadata& metadata, CLosses& losses);

inline CBytes AsBytes(std::string_view text) {
    CBytes bytes(text.size());
    std::copy(text.begin(), text.end(), bytes.begin());
    return bytes;
}
inline bool BeginsWith(CBytesView bytes, std::string_view mark) {
    return bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin());
}
inline CBytes After(CBytesView bytes, std::size_t count) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end()};
}
inline void Append(CBytes& to, CBytesView bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

}  // namespace imagefile
