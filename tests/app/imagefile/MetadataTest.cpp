#include <cstring>

#include "Files.h"
#include "app/imagefile/metadata/ExifBlock.h"
#include "app/imagefile/metadata/Metadata.h"
#include "app/imagefile/metadata/PngText.h"
#include "app/imagefile/metadata/TiffTree.h"

// What travels through whole files is judged by other programs: see zoo.py.
namespace {

using files::Big;

imagefile::CBytes Bytes(const std::string& text) { return {text.begin(), text.end()}; }

// Data with offsets of their own, a thumbnail in the middle, and a value that points outside.
imagefile::CBytes BigEndianExif() {
    const auto entry = [](unsigned tag, unsigned type, unsigned count, std::uint64_t value) {
        return Big(tag, 2) + Big(type, 2) + Big(count, 4) + Big(value, 4);
    };
    std::string bytes = std::string("MM\0*", 4) + Big(8, 4);
    bytes += Big(4, 2) + entry(0x010f, 2, 6, 100) + entry(0x0112, 3, 1, 6U << 16) +
             entry(0x0131, 2, 900, 100) + entry(0x8769, 4, 1, 120) + Big(62, 4);
    bytes += Big(2, 2) + entry(0x0201, 4, 1, 106) + entry(0x0202, 4, 1, 4) + Big(0, 4);
    bytes.resize(100);
    bytes += std::string("Maker\0", 6) + "\xff\xd8\xff\xd9";
    bytes.resize(120);
    bytes += Big(2, 2) + entry(0x829a, 5, 1, 150) + entry(0x8769, 4, 1, 120) + Big(0, 4);
    bytes.resize(150);
    return Bytes(bytes + Big(1, 4) + Big(250, 4));
}

TEST(Metadata, ExifIsCorrectedInPlace) {
    imagefile::CBytes block = BigEndianExif();
    const imagefile::CBytes before = block;
    EXPECT_EQ(imagefile::exif::Orientation(block), 6);
    imagefile::exif::MakeUpright(block, 6, {30, 40});
    EXPECT_EQ(imagefile::exif::Orientation(block), 1);
    ASSERT_EQ(block.size(), before.size());
    std::vector<std::size_t> changed;
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (block[i] != before[i]) changed.push_back(i);
    }
    // The orientation, the pointer to the thumbnail's directory, the thumbnail.
    EXPECT_THAT(changed, testing::ElementsAre(31, 61, 106, 107, 108, 109));
}

// Whatever byte is wrong or missing, nothing outside the data is touched.
TEST(Metadata, DamagedExifIsHarmless) {
    const imagefile::CBytes whole = BigEndianExif();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        imagefile::CBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        cut.shrink_to_fit();
        imagefile::exif::MakeUpright(cut, 6, {30, 40});
        EXPECT_LE(cut.size(), length);
        for (const int value : {0, 1, 0x7f, 0xff}) {
            imagefile::CBytes wrong = whole;
            wrong[length] = static_cast<std::uint8_t>(value);
            imagefile::exif::MakeUpright(wrong, 6, {30, 40});
            EXPECT_LE(wrong.size(), whole.size());
            imagefile::exif::Resolution(wrong);
        }
    }
}

// A MakerNote keeps its place through a new layout as long as the place can be kept.
TEST(Metadata, MakerNotesKeepTheirPlace) {
    using namespace imagefile::tiff;
    const imagefile::CBytes note = Bytes("some maker's own bytes");
    for (const std::uint64_t at :
         {std::uint64_t{8}, std::uint64_t{41}, std::uint64_t{5000}, std::uint64_t{70000}}) {
        std::vector<imagefile::STiffValue> values(1);
        values[0] = {kExifDirectory, kLong, 1};
        values[0].below = {{kMakerNote, kUndefined, note.size(), note, at},
                           {0x9003, kAscii, 20, imagefile::CBytes(20, 'x')}};
        bool moved = false;
        const imagefile::CBytes block = imagefile::exif::Build(values, true, moved);
        const bool stays =
            !moved && block.size() >= at + note.size() &&
            std::equal(note.begin(), note.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(stays, at < 60000) << at;
        EXPECT_EQ(moved, at > 60000) << at;
        EXPECT_TRUE(imagefile::exif::HoldsAll(imagefile::exif::Build(values, true, moved), block));
    }
}

// What says something else is told, though it is there.
TEST(Metadata, LossIsToldByContents) {
    imagefile::SMetadata wanted;
    wanted.profile = Bytes("profile");
    wanted.exif = BigEndianExif();
    wanted.xmp = Bytes(
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
        "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
        "xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Label='Rain'/></rdf:RDF></x:xmpmeta>");
    wanted.iptc = Bytes("iptc");
    wanted.resolution = {300, 300, imagefile::ENResolutionUnit::Inch};
    wanted.texts = {{"Title", "", "Rain"}};
    EXPECT_TRUE(imagefile::LostMetadata(wanted, wanted).empty());
    imagefile::SMetadata other = wanted;
    other.resolution = {118.11, 118.11, imagefile::ENResolutionUnit::Centimetre};
    other.texts = {{"Comment", "", "Title: Rain"}};
    EXPECT_TRUE(imagefile::LostMetadata(wanted, other).empty());
    other.profile[0] = other.iptc[0] = 'x';
    other.xmp[wanted.xmp.size() - 29] = 'X';  // of the label
    other.exif[100] = 'x';
    other.resolution->unit = imagefile::ENResolutionUnit::None;
    other.texts[0].text = "Title: Snow";
    EXPECT_THAT(imagefile::LostMetadata(wanted, other),
                testing::ElementsAre("the colour profile", "the EXIF data", "the XMP data",
                                     "the IPTC data", "the resolution", "the text \"Title\""));
}

}  // namespace
