#pragma once

#include <filesystem>

#include "host/graphics/CRowIteratorBands.h"

// Picture files as the library of patterns and textures needs them; whoever puts a program together
// brings the decoder. Used by several threads at once.
struct IPictureFiles {
    virtual ~IPictureFiles() = default;
    // Whether a file's name says that it is a picture.
    virtual bool IsPicture(const std::filesystem::path& file) const = 0;
    // Throw CNException, code 105, with "FILE: what is wrong".
    virtual CRowIteratorBands Read(const std::filesystem::path& file) const = 0;
    virtual CSize ReadSize(const std::filesystem::path& file) const = 0;
    // Writes in full or not at all, replacing what is there.
    virtual void Write(const std::filesystem::path& file,
                       const CRowIteratorBands& picture) const = 0;
};
