#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/VipsSession.h"
#include "support/Pictures.h"

// Files for tests to be made, damaged and looked at.
namespace files {

namespace fs = std::filesystem;

// A folder of the test's own, gone with it.
class Folder {
  public:
    Folder() {
        std::string name = testing::TempDir() + "imagefile-XXXXXX";
        path_ = mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path_); }
    fs::path operator/(const std::string& name) const { return path_ / name; }
    const fs::path& Path() const { return path_; }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(path_)) {
            names.push_back(entry.path().filename().native());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    fs::path path_;
};

inline std::string Content(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
inline void SetContent(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

inline void Write(const fs::path& file, const CRowIteratorBands& pixels,
                  const imagefile::SOutputRules& rules = {}) {
    imagefile::WriteImage(file, pixels, nullptr, rules);
}

// "fault: message" of what `work` throws, empty when it does not.
inline std::string FaultOf(const auto& work) {
    constexpr const char* kNames[] = {"usage",  "unreadable", "unsupported",
                                      "output", "limit",      "cancelled"};
    try {
        work();
        return {};
    } catch (const imagefile::CImageFileError& error) {
        return std::string(kNames[static_cast<int>(error.Fault())]) + ": " + error.what();
    } catch (const CFileError& error) {
        return std::string("file: ") + error.what();
    }
}
inline std::string ReadFault(const fs::path& file, const imagefile::SReadOptions& options = {}) {
    return FaultOf([&] { imagefile::ReadImage(file, options); });
}

// A number as a file holds it.
inline std::string Little(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}
inline std::string Big(std::uint64_t value, int bytes) {
    std::string text = Little(value, bytes);
    std::reverse(text.begin(), text.end());
    return text;
}

// A TIFF file of one row of pixels, whose samples are `data`, with these further tags of one
// 16-bit or 32-bit value each.
struct TiffTag {
    unsigned tag, type;
    std::uint32_t value;
};
inline std::string Tiff(unsigned width, unsigned bits, unsigned samples, unsigned photometric,
                        const std::string& data, std::vector<TiffTag> more = {}) {
    const auto size = static_cast<std::uint32_t>(data.size());
    std::vector<TiffTag> tags = {{256, 4, width},   {257, 3, 1},           {258, 3, bits},
                                 {259, 3, 1},       {262, 3, photometric}, {273, 4, 8},
                                 {277, 3, samples}, {278, 3, 1},           {279, 4, size}};
    tags.insert(tags.end(), more.begin(), more.end());
    std::sort(tags.begin(), tags.end(), [](auto& a, auto& b) { return a.tag < b.tag; });
    std::string file = std::string("II*\0", 4) + Little(8 + size, 4) + data;
    file += Little(tags.size(), 2);
    for (const TiffTag& t : tags) {
        file += Little(t.tag, 2) + Little(t.type, 2) + Little(1, 4) + Little(t.value, 4);
    }
    return file + Little(0, 4);
}

// An image of the library's own, for files that are not ours to write: noise, the same in every
// band.
inline imagefile::TVips<VipsImage> VipsPicture(int width, int height, int bands,
                                               VipsBandFormat format, VipsInterpretation colours) {
    imagefile::StartVips();
    VipsImage* steps[4] = {};
    EXPECT_EQ(vips_gaussnoise(&steps[0], width, height, "mean", 100.0, nullptr), 0);
    EXPECT_EQ(vips_cast(steps[0], &steps[1], format, nullptr), 0);
    std::vector<VipsImage*> all(static_cast<std::size_t>(bands), steps[1]);
    EXPECT_EQ(vips_bandjoin(all.data(), &steps[2], bands, nullptr), 0);
    EXPECT_EQ(vips_copy(steps[2], &steps[3], "interpretation", colours, nullptr), 0);
    for (int i = 0; i < 3; ++i) g_object_unref(steps[i]);
    return imagefile::TVips<VipsImage>(steps[3]);
}

}  // namespace files
