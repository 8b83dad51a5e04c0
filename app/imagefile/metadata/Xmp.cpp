#include "app/imagefile/metadata/Xmp.h"

#include <exempi/xmp.h>
#include <exempi/xmpconsts.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string_view>

namespace imagefile::xmp {

namespace {

struct SFree {
    void operator()(_Xmp* packet) const { xmp_free(packet); }
    void operator()(_XmpString* text) const { xmp_string_free(text); }
};
using CPacket = std::unique_ptr<_Xmp, SFree>;
using CText = std::unique_ptr<_XmpString, SFree>;

CPacket Open(CBytesView bytes) {
    static std::once_flag started;
    std::call_once(started, [] { xmp_init(); });
    return CPacket(xmp_new(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::string Serialised(_Xmp* packet, std::uint32_t options) {
    const CText text(xmp_string_new());
    if (!xmp_serialize(packet, text.get(), options, 0)) return {};
    return xmp_string_cstr(text.get());
}

struct SProperty {
    const char* schema;
    const char* prefix;
    const char* name;
    int value;
};

bool Says(_Xmp* packet, const SProperty& property, int& value) {
    std::int32_t told = 0;
    if (!xmp_get_property_int32(packet, property.schema, property.name, &told, nullptr)) {
        return false;
    }
    value = told;
    return true;
}

// Replaces the number in `name="6"`, `name='6'` or `<name>6</name>`, everywhere.
void ReplaceText(std::string& text, const SProperty& property) {
    const std::string name = std::string(property.prefix) + ":" + property.name;
    const std::string value = std::to_string(property.value);
    constexpr std::string_view kSpaces = " \t\r\n";
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
        std::size_t from = text.find_first_not_of(kSpaces, at + name.size());
        if (from == std::string::npos || (text[from] != '=' && text[from] != '>')) continue;
        from = text.find_first_not_of(" \t\r\n\"'", from + 1);
        if (from == std::string::npos) continue;
        const std::size_t end = text.find_first_not_of("0123456789", from);
        if (end == std::string::npos || end == from) continue;
        text.replace(from, end - from, value);
    }
}

}  // namespace

void MakeUpright(CBytes& packet, CSize size) {
    const SProperty properties[] = {{NS_TIFF, "tiff", "Orientation", 1},
                                    {NS_TIFF, "tiff", "ImageWidth", size.cx},
                                    {NS_TIFF, "tiff", "ImageLength", size.cy},
                                    {NS_EXIF, "exif", "PixelXDimension", size.cx},
                                    {NS_EXIF, "exif", "PixelYDimension", size.cy}};
    CPacket opened = Open(packet);
    if (!opened) return;
    const auto is_right = [&](_Xmp* of) {
        return std::all_of(std::begin(properties), std::end(properties),
                           [of](const SProperty& property) {
                               int told = property.value;
                               Says(of, property, told);
                               return told == property.value;
                           });
    };
    if (is_right(opened.get())) return;
    std::string text(packet.begin(), packet.end());
    for (const SProperty& property : properties) ReplaceText(text, property);
    const CPacket patched = Open({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    if (!patched || !is_right(patched.get())) {
        for (const SProperty& property : properties) {
            if (int told = 0; Says(opened.get(), property, told)) {
                xmp_set_property_int32(opened.get(), property.schema, property.name, property.value,
                                       0);
            }
        }
        text = Serialised(opened.get(), XMP_SERIAL_USECOMPACTFORMAT);
        if (text.empty()) return;
    }
    packet.assign(text.begin(), text.end());
}

bool IsSame(CBytesView a, CBytesView b) {
    if (std::equal(a.begin(), a.end(), b.begin(), b.end())) return true;
    const CPacket of_a = Open(a), of_b = Open(b);
    constexpr std::uint32_t kOptions = XMP_SERIAL_USECOMPACTFORMAT | XMP_SERIAL_OMITPACKETWRAPPER;
    return of_a && of_b && Serialised(of_a.get(), kOptions) == Serialised(of_b.get(), kOptions);
}

}  // namespace imagefile::xmp
