#include "capi/Pixels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include "hostlib/graphics/SwapColours.h"
#include "job/CJobError.h"

namespace {

constexpr int kLargestSide = 65535;
constexpr std::size_t kBlockBytes = std::size_t{1} << 20;  // of rows that one thread copies at once
constexpr std::size_t kBeyondCaches = std::size_t{16} << 20;  // so large a picture is in none

[[noreturn]] void Refuse(const std::string& what, const char* hint = "") {
    throw CJobError(EJobFault::Refused, what, hint);
}

int Channels(cmdtexture_layout layout) {
    return layout <= CMDTEXTURE_RGBA ? layout : layout - (CMDTEXTURE_BGR - CMDTEXTURE_RGB);
}
bool RedIsFirst(cmdtexture_layout layout) {
    return layout == CMDTEXTURE_RGB || layout == CMDTEXTURE_RGBA;
}
CNPixelFormat FormatOf(const cmdtexture_image& image) {
    return CNPixelFormat::Of(Channels(image.layout), image.depth == 16);
}
std::size_t RowBytes(const cmdtexture_image& image) {
    return static_cast<std::size_t>(image.width) *
           static_cast<std::size_t>(FormatOf(image).PixelBytes());
}

// Copies rows between the caller's memory and the host's, in the direction of the arguments.
void CopyRows(const cmdtexture_image& shape, const std::uint8_t* from, std::ptrdiff_t from_stride,
              std::uint8_t* to, std::ptrdiff_t to_stride) {
    if (from == to) return;
    const std::size_t bytes = RowBytes(shape);
    const bool swaps = RedIsFirst(shape.layout);
    // Bytes one by one are grey to those who only copy them.
    const CNPixelFormat format = swaps ? FormatOf(shape) : CNPixelFormat(ENPixelFormat::Grey8);
    const int pixels = swaps ? shape.width : static_cast<int>(bytes);
    const bool streams = bytes * static_cast<std::size_t>(shape.height) >= kBeyondCaches;
    const tbb::blocked_range<int> rows(0, shape.height,
                                       1 + kBlockBytes / std::max<std::size_t>(bytes, 1));
    tbb::parallel_for(rows, [&](const tbb::blocked_range<int>& range) {
        for (int y = range.begin(); y < range.end(); ++y) {
            SwapColours(from + from_stride * y, to + to_stride * y, pixels, format, streams);
        }
    });
}

}  // namespace

void CheckImage(const cmdtexture_image* image, const char* role) {
    if (!image || image->size < sizeof(cmdtexture_image)) {
        Refuse(fmt::format("the {} is no picture", role), "size is sizeof(cmdtexture_image)");
    }
    // A program in C can have put any number there, which is no value of the enumeration here.
    std::underlying_type_t<cmdtexture_layout> layout = 0;
    static_assert(sizeof layout == sizeof image->layout);
    std::memcpy(&layout, &image->layout, sizeof layout);
    if (layout < CMDTEXTURE_GREY || layout > CMDTEXTURE_BGRA) {
        Refuse(fmt::format("the {} has the unknown layout {}", role, static_cast<int>(layout)));
    }
    if (image->depth != 8 && image->depth != 16) {
        Refuse(fmt::format("the {} has {} bits a sample", role, image->depth), "8 or 16 can be");
    }
    if (image->width < 1 || image->height < 1 || image->width > kLargestSide ||
        image->height > kLargestSide) {
        Refuse(fmt::format("the {} has {} x {} pixels", role, image->width, image->height),
               "sides are 1 to 65535 pixels");
    }
    if (!image->pixels) Refuse(fmt::format("the {} has no pixels", role));
    const auto stride =
        static_cast<std::size_t>(image->stride < 0 ? -image->stride : image->stride);
    if (image->height > 1 && stride < RowBytes(*image)) {
        Refuse(fmt::format("the rows of the {} overlap: {} bytes lie {} bytes apart", role,
                           RowBytes(*image), image->stride));
    }
    const auto address = reinterpret_cast<std::uintptr_t>(image->pixels);
    if (image->depth == 16 && (address % 2 != 0 || stride % 2 != 0)) {
        Refuse(fmt::format("the {} has samples of 16 bits at odd addresses", role));
    }
}

void CheckPair(const cmdtexture_image& source, const cmdtexture_image& destination) {
    if (source.width != destination.width || source.height != destination.height) {
        Refuse(fmt::format("the source has {} x {} pixels, the destination {} x {}", source.width,
                           source.height, destination.width, destination.height));
    }
    if (FormatOf(source) != FormatOf(destination)) {
        Refuse("the source and the destination differ in depth or in channels");
    }
}

CRowIteratorBands ToHost(const cmdtexture_image& image) {
    CRowIteratorBands picture;
    if (!RedIsFirst(image.layout)) {
        picture.Attach(image.pixels, image.stride, image.width, image.height, FormatOf(image))
            .ThrowIfFailed();
        return picture;
    }
    if (picture.Create(image.width, image.height, FormatOf(image)).Failed()) throw std::bad_alloc();
    CopyRows(image, static_cast<const std::uint8_t*>(image.pixels), image.stride,
             picture.Row<std::uint8_t>(0), picture.Stride());
    return picture;
}

void FromHost(const CRowIteratorBands& picture, const cmdtexture_image& image) {
    CopyRows(image, picture.Row<std::uint8_t>(0), picture.Stride(),
             static_cast<std::uint8_t*>(image.pixels), image.stride);
}
