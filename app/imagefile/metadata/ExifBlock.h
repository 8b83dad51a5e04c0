#pragma once

#include <optional>

#include "app/imagefile/metadata/Metadata.h"

// EXIF data as one block, as JPEG, PNG and WebP files carry it: a TIFF structure in which all
// offsets count from the block's beginning.
namespace imagefile::exif {

// Whether it can be read at all.
bool IsValid(CBytesView block);
bool IsBigEndian(CBytesView block);
// 1 to 8; 1 when none is told.
int Orientation(CBytesView block);
// Of the picture as it is stored.
std::optional<SResolution> Resolution(CBytesView block);

// Corrects the block in place, so that every offset in it stays right, for an upright picture of
// this size that was turned from the orientation told: orientation, sizes, resolution; the
// thumbnail is taken out.
void MakeUpright(CBytes& block, int orientation, CSize size);

// A block of the values of a TIFF file's directory, MakerNotes in their place as far as a block
// reaches. `moved_maker_note` tells when one is not.
CBytes Build(const std::vector<STiffValue>& values, bool is_big_endian, bool& moved_maker_note);

// Whether every value of a block is in another too, wherever and in whatever byte order; those that
// tell how pixels are coded aside.
bool HoldsAll(CBytesView wanted, CBytesView written);

}  // namespace imagefile::exif
