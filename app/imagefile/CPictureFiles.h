#pragma once

#include <memory>

#include "job/IPictureFiles.h"

namespace imagefile {

// This library as the one that reads patterns and textures and keeps their thumbnails.
std::shared_ptr<const IPictureFiles> MakePictureFiles();

}  // namespace imagefile
