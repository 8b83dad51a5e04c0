#pragma once

#include "app/imagefile/metadata/Metadata.h"

// Photoshop image resources ("8BIM"), which carry IPTC data in JPEG files and elsewhere.
namespace imagefile::photoshop {

// What JPEG segments of such resources begin with.
extern const CBytes kSegmentMark;

// The IPTC records among the resources; empty when there are none.
CBytes Iptc(CBytesView resources);
// These resources (perhaps none) with the IPTC records among them.
CBytes WithIptc(CBytesView resources, CBytesView iptc);
// Takes out the thumbnails, which show the picture of before.
CBytes WithoutThumbnails(CBytesView resources);

}  // namespace imagefile::photoshop
