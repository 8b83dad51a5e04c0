#pragma once

#include "app/imagefile/metadata/Metadata.h"

// XMP packets.
namespace imagefile::xmp {

// Corrects what a packet says of the picture's orientation and size, in place where the text allows
// it, else by writing the packet anew; a packet that says the right thing stays as it is.
void MakeUpright(CBytes& packet, CSize size);

// Whether two packets say the same.
bool IsSame(CBytesView a, CBytesView b);

}  // namespace imagefile::xmp
