#include "app/imagefile/metadata/Photoshop.h"

#include <libiptcdata/iptc-jpeg.h>

#include <algorithm>

#include "app/imagefile/metadata/TiffTree.h"

namespace imagefile::photoshop {

namespace {

constexpr std::string_view kMark("Photoshop 3.0\0", 14);

// The library knows resources as JPEG segments have them.
CBytes Marked(CBytesView resources) {
    CBytes marked(kMark.size() + resources.size());
    std::copy(kMark.begin(), kMark.end(), marked.begin());
    std::copy(resources.begin(), resources.end(),
              marked.begin() + static_cast<std::ptrdiff_t>(kMark.size()));
    return marked;
}

bool IsThumbnail(std::uint64_t id) { return id == 1033 || id == 1036; }

}  // namespace

const CBytes kSegmentMark(kMark.begin(), kMark.end());

CBytes Iptc(CBytesView resources) {
    const CBytes marked = Marked(resources);
    unsigned length = 0;
    const int at =
        iptc_jpeg_ps3_find_iptc(marked.data(), static_cast<unsigned>(marked.size()), &length);
    if (at <= 0 || static_cast<std::size_t>(at) + length > marked.size()) return {};
    return {marked.begin() + at, marked.begin() + at + static_cast<std::ptrdiff_t>(length)};
}

CBytes WithIptc(CBytesView resources, CBytesView iptc) {
    constexpr std::size_t kFrameBytes = 64;
    const CBytes before = Marked(resources);
    CBytes marked(before.size() + iptc.size() + kFrameBytes);
    const int length = iptc_jpeg_ps3_save_iptc(
        resources.empty() ? nullptr : before.data(),
        resources.empty() ? 0 : static_cast<unsigned>(before.size()), iptc.data(),
        static_cast<unsigned>(iptc.size()), marked.data(), static_cast<unsigned>(marked.size()));
    if (length <= static_cast<int>(kMark.size())) return {};
    return {marked.begin() + kMark.size(), marked.begin() + length};
}

// A resource: four letters, an id, a name with its length ahead, the length, the data; name and
// data padded to even lengths.
CBytes WithoutThumbnails(CBytesView resources) {
    CBytes kept;
    for (std::size_t at = 0; at < resources.size();) {
        const auto rest = resources.subspan(at);
        std::size_t bytes = rest.size();
        std::uint64_t id = 0;
        if (rest.size() >= 12) {
            const std::size_t name = (rest[6] + std::size_t{2}) / 2 * 2;
            if (6 + name + 4 <= rest.size()) {
                id = tiff::GetNumber(&rest[4], 2, true);
                const std::uint64_t data = tiff::GetNumber(&rest[6 + name], 4, true);
                bytes = std::min<std::uint64_t>(rest.size(), 6 + name + 4 + data + data % 2);
            }
        }
        if (!IsThumbnail(id)) kept.insert(kept.end(), rest.begin(), rest.begin() + bytes);
        at += bytes;
    }
    return kept;
}

}  // namespace imagefile::photoshop
