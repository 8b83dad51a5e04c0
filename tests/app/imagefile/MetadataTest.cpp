#include "Files.h"
#include "app/imagefile/CExif.h"
#include "app/imagefile/Metadata.h"

namespace {

using files::Big;
using files::Folder;
using imagefile::ReadImage;
using imagefile::WriteImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A JPEG file with all that a JPEG file may carry.
void MakeRichJpeg(const files::fs::path& file) {
    const auto picture = files::VipsPicture(40, 30, 3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB);
    VipsImage* image = picture.get();
    VipsBlob* profile = nullptr;
    ASSERT_EQ(vips_profile_load("srgb", &profile, nullptr), 0);
    std::size_t length = 0;
    const void* bytes = vips_blob_get(profile, &length);
    vips_image_set_blob_copy(image, VIPS_META_ICC_NAME, bytes, length);
    vips_area_unref(VIPS_AREA(profile));
    const std::string xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>rain</x:xmpmeta>";
    vips_image_set_blob_copy(image, VIPS_META_XMP_NAME, xmp.data(), xmp.size());
    for (const auto& [name, value] : {std::pair("exif-ifd0-Make", "Camera makers"),
                                      std::pair("exif-ifd0-Copyright", "Somebody"),
                                      std::pair("exif-ifd2-ExposureTime", "1/250"),
                                      std::pair("exif-ifd3-GPSLatitude", "52/1 30/1 1234/100")}) {
        vips_image_set_string(image, name, value);
    }
    vips_image_set_string(image, VIPS_META_RESOLUTION_UNIT, "in");
    image->Xres = 300 / 25.4;
    image->Yres = 150 / 25.4;
    ASSERT_EQ(vips_jpegsave(image, file.c_str(), nullptr), 0);
}

std::string Field(const imagefile::CMetadata& metadata, const char* name) {
    const char* text = nullptr;
    VipsImage* header = metadata->header.get();
    if (vips_image_get_typeof(header, name) == 0) return "none";
    vips_image_get_string(header, name, &text);
    const std::string value(text);
    return value.substr(0, value.find(" ("));
}

void ExpectSame(const imagefile::CMetadata& a, const imagefile::CMetadata& b,
                const std::string& where) {
    SCOPED_TRACE(where);
    for (const char* blob : {VIPS_META_ICC_NAME, VIPS_META_XMP_NAME}) {
        const auto of_a = imagefile::Blob(a->header.get(), blob);
        const auto of_b = imagefile::Blob(b->header.get(), blob);
        EXPECT_FALSE(of_a.empty());
        EXPECT_TRUE(std::equal(of_a.begin(), of_a.end(), of_b.begin(), of_b.end())) << blob;
    }
    for (const char* field : {"exif-ifd0-Make", "exif-ifd0-Copyright", "exif-ifd2-ExposureTime",
                              "exif-ifd3-GPSLatitude"}) {
        EXPECT_NE(Field(a, field), "none") << field;
        EXPECT_EQ(Field(a, field), Field(b, field)) << field;
    }
    EXPECT_NEAR(a->header->Xres, b->header->Xres, 0.01);
    EXPECT_NEAR(a->header->Yres, b->header->Yres, 0.01);
}

// From every kind to every kind.
TEST(Metadata, TravelsBetweenAllKinds) {
    const Folder folder;
    MakeRichJpeg(folder / "source.jpg");
    const imagefile::SImageFile source = ReadImage(folder / "source.jpg");
    const std::string extensions[] = {".png", ".jpg", ".tif", ".webp"};
    for (const std::string& first : extensions) {
        const auto between = folder / ("between" + first);
        EXPECT_THAT(WriteImage(between, source.pixels, source.metadata, {}), IsEmpty());
        const imagefile::SImageFile once = ReadImage(between);
        ExpectSame(source.metadata, once.metadata, "JPEG to " + first);
        for (const std::string& second : extensions) {
            const auto last = folder / ("from" + first.substr(1) + second);
            EXPECT_THAT(WriteImage(last, once.pixels, once.metadata, {}), IsEmpty());
            ExpectSame(source.metadata, ReadImage(last).metadata, first + " to " + second);
        }
    }
}

// Texts of a PNG file have no place in a JPEG; IPTC has none in a PNG.
TEST(Metadata, WarnsOfWhatAKindCannotHold) {
    const Folder folder;
    const auto picture = files::VipsPicture(9, 9, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    vips_image_set_string(picture.get(), "png-comment-0-Title", "Rain");
    ASSERT_EQ(vips_pngsave(picture.get(), (folder / "x.png").c_str(), nullptr), 0);
    vips_image_set_blob_copy(picture.get(), VIPS_META_IPTC_NAME, "\x1c\x02\x05\0\1A", 6);
    ASSERT_EQ(vips_tiffsave(picture.get(), (folder / "x.tif").c_str(), nullptr), 0);
    const imagefile::SImageFile png = ReadImage(folder / "x.png");
    const imagefile::SImageFile tiff = ReadImage(folder / "x.tif");
    EXPECT_THAT(WriteImage(folder / "a.png", png.pixels, png.metadata, {}), IsEmpty());
    EXPECT_EQ(Field(ReadImage(folder / "a.png").metadata, "png-comment-0-Title"), "Rain");
    EXPECT_THAT(WriteImage(folder / "a.jpg", png.pixels, png.metadata, {}),
                ElementsAre(HasSubstr("a.jpg: JPEG cannot hold the text comments")));
    EXPECT_THAT(WriteImage(folder / "b.tif", tiff.pixels, tiff.metadata, {}), IsEmpty());
    EXPECT_THAT(WriteImage(folder / "b.png", tiff.pixels, tiff.metadata, {}),
                ElementsAre(HasSubstr("PNG cannot hold the IPTC data")));
}

// Data in the other byte order, with offsets of their own, a thumbnail and a value cut off.
std::string BigEndianExif() {
    const auto entry = [](unsigned tag, unsigned type, unsigned count, std::uint64_t value) {
        return Big(tag, 2) + Big(type, 2) + Big(count, 4) + Big(value, 4);
    };
    std::string bytes = std::string("MM\0*", 4) + Big(8, 4);
    bytes += Big(4, 2) + entry(0x010f, 2, 6, 100) + entry(0x0112, 3, 1, 6U << 16) +
             entry(0x0131, 2, 900, 100) + entry(0x8769, 4, 1, 120) + Big(62, 4);
    bytes += Big(1, 2) + entry(0x0201, 4, 1, 100) + Big(0, 4);
    bytes.resize(100);
    bytes += std::string("Maker\0", 6);
    bytes.resize(120);
    bytes += Big(2, 2) + entry(0x829a, 5, 1, 150) + entry(0x8769, 4, 1, 120) + Big(0, 4);
    bytes.resize(150);
    return bytes + Big(1, 4) + Big(250, 4);
}

std::span<const std::uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(Metadata, ExifIsReadInEitherOrderAndWrittenUpright) {
    auto exif = imagefile::CExif::FromBytes(Bytes(std::string("Exif\0\0", 6) + BigEndianExif()));
    ASSERT_TRUE(exif);
    exif->Describe(40, 30, 10.0, 20.0);
    imagefile::StartVips();
    imagefile::SMetadata read{imagefile::TVips<VipsImage>(vips_image_new())};
    imagefile::AddExif(read.header.get(), *exif);
    const auto metadata = std::make_shared<const imagefile::SMetadata>(std::move(read));
    const struct {
        const char* field;
        const char* value;
    } expected[] = {{"exif-ifd0-Make", "Maker"},
                    {"exif-ifd0-Orientation", "1"},
                    {"exif-ifd0-Software", "none"},
                    {"exif-ifd1-Make", "none"},
                    {"exif-ifd2-ExposureTime", "1/250"},
                    {"exif-ifd2-PixelXDimension", "40"},
                    {"exif-ifd0-XResolution", "254000/1000"}};
    for (const auto& [field, value] : expected) EXPECT_EQ(Field(metadata, field), value) << field;
}

// A viewer would turn the picture a second time, and show the small picture of before.
TEST(Metadata, TurnedPicturesAreWrittenUprightAndWithoutThumbnail) {
    const Folder folder;
    const auto picture = files::VipsPicture(40, 30, 3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB);
    ASSERT_EQ(vips_jpegsave(picture.get(), (folder / "x.jpg").c_str(), nullptr), 0);
    const std::string plain = files::Content(folder / "x.jpg");
    const std::string exif = std::string("Exif\0\0", 6) + BigEndianExif();
    files::SetContent(folder / "x.jpg", plain.substr(0, 2) + "\xff\xe1" + Big(exif.size() + 2, 2) +
                                            exif + plain.substr(2));
    const imagefile::SImageFile source = ReadImage(folder / "x.jpg");
    EXPECT_EQ(source.pixels.GetWidth(), 30);
    for (const char* name : {"y.jpg", "y.png", "y.tif", "y.webp"}) {
        SCOPED_TRACE(name);
        EXPECT_THAT(WriteImage(folder / name, source.pixels, source.metadata, {}), IsEmpty());
        const imagefile::TVips<VipsImage> written(
            vips_image_new_from_file((folder / name).c_str(), nullptr));
        EXPECT_EQ(vips_image_get_orientation(written.get()), 1);
        EXPECT_EQ(vips_image_get_typeof(written.get(), "exif-ifd1-XResolution"), 0U);
        EXPECT_EQ(vips_image_get_typeof(written.get(), "jpeg-thumbnail-data"), 0U);
        const imagefile::SImageFile again = ReadImage(folder / name);
        EXPECT_EQ(again.pixels.GetWidth(), 30);
        EXPECT_EQ(Field(again.metadata, "exif-ifd0-Make"), "Maker");
    }
}

// Whatever byte is wrong or missing, nothing outside the data is read.
TEST(Metadata, DamagedExifIsHarmless) {
    const std::string whole = BigEndianExif();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<std::uint8_t> cut(whole.begin(),
                                            whole.begin() + static_cast<std::ptrdiff_t>(length));
        const auto exif = imagefile::CExif::FromBytes(cut);
        EXPECT_TRUE(!exif || length > 22) << length;
        for (const char value : {'\0', '\xff'}) {
            std::string wrong = whole;
            wrong[length] = value;
            if (const auto kept = imagefile::CExif::FromBytes(Bytes(wrong))) {
                EXPECT_LT(kept->Bytes().size(), 2000U);
            }
        }
    }
}

}  // namespace
