#include "app/imagefile/metadata/ColourProfile.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <memory>

#include "app/imagefile/metadata/TiffTree.h"

namespace imagefile::colour {

namespace {

struct SClose {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using CProfile = std::unique_ptr<void, SClose>;
using CCurve = std::unique_ptr<cmsToneCurve, SClose>;

struct SMeaning {
    cmsCIExyY white = {0.3127, 0.3290, 1};
    cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
    double gamma = 0;  // 0 is the curve of sRGB
};

CCurve CurveOf(const SMeaning& meaning) {
    if (meaning.gamma > 0) return CCurve(cmsBuildGamma(nullptr, meaning.gamma));
    // IEC 61966-2-1.
    const cmsFloat64Number srgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return CCurve(cmsBuildParametricToneCurve(nullptr, 4, srgb));
}

CBytes Saved(const SMeaning& meaning, bool is_grey, const char* description) {
    const CCurve curve = CurveOf(meaning);
    cmsToneCurve* curves[] = {curve.get(), curve.get(), curve.get()};
    const CProfile profile(is_grey
                               ? cmsCreateGrayProfile(&meaning.white, curve.get())
                               : cmsCreateRGBProfile(&meaning.white, &meaning.primaries, curves));
    if (!profile) return {};
    cmsMLU* text = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(text, "en", "US", description);
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
    cmsUInt32Number length = 0;
    if (!cmsSaveProfileToMem(profile.get(), nullptr, &length)) return {};
    CBytes bytes(length);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &length)) return {};
    // The time of making would make no two files of the same picture equal.
    constexpr std::size_t kDate = 24, kDateBytes = 12;
    constexpr std::array<std::uint8_t, kDateBytes> kEpoch = {0x07, 0xd0, 0, 1, 0, 1};
    std::copy(kEpoch.begin(), kEpoch.end(), bytes.begin() + kDate);
    return bytes;
}

const SChunk* Find(const std::vector<SChunk>& chunks, const char* type, std::size_t bytes) {
    const auto found = std::find_if(chunks.begin(), chunks.end(), [&](const SChunk& chunk) {
        return chunk.type == type && chunk.data.size() == bytes;
    });
    return found == chunks.end() ? nullptr : &*found;
}

// Code points of ITU-T H.273: the primaries and curves that a matrix profile can hold.
std::optional<SMeaning> FromCodes(const SChunk& chunk) {
    SMeaning meaning;
    switch (chunk.data[0]) {
        case 1:
            break;
        case 9:
            meaning.primaries = {{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}};
            break;
        case 12:
            meaning.primaries = {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
            break;
        default:
            return std::nullopt;
    }
    switch (chunk.data[1]) {
        case 4:
            meaning.gamma = 2.2;
            break;
        case 5:
            meaning.gamma = 2.8;
            break;
        case 8:
            meaning.gamma = 1;
            break;
        case 13:
            break;
        default:
            return std::nullopt;
    }
    const bool is_full_rgb = chunk.data[2] == 0 && chunk.data[3] == 1;
    return is_full_rgb ? std::optional(meaning) : std::nullopt;
}

std::optional<SMeaning> FromChromaticities(const SChunk* chromaticities, const SChunk* gamma) {
    SMeaning meaning;
    const auto number = [](const SChunk& chunk, std::size_t i) {
        return static_cast<double>(tiff::GetNumber(&chunk.data[4 * i], 4, true)) / 100000;
    };
    if (gamma && number(*gamma, 0) > 0) meaning.gamma = 1 / number(*gamma, 0);
    if (!chromaticities) return meaning;
    cmsCIExyY* points[] = {&meaning.white, &meaning.primaries.Red, &meaning.primaries.Green,
                           &meaning.primaries.Blue};
    for (std::size_t i = 0; i < 4; ++i) {
        *points[i] = {number(*chromaticities, 2 * i), number(*chromaticities, 2 * i + 1), 1};
        if (points[i]->y <= 0) return std::nullopt;
    }
    return meaning;
}

}  // namespace

bool IsProfileFor(CBytesView profile, bool is_grey) {
    constexpr std::size_t kHeader = 128, kSpace = 16, kMark = 36;
    const auto has = [&](std::size_t at, const char* text) {
        return std::equal(text, text + 4, profile.begin() + static_cast<std::ptrdiff_t>(at));
    };
    return profile.size() > kHeader && has(kMark, "acsp") && has(kSpace, is_grey ? "GRAY" : "RGB ");
}

CBytes FromPngChunks(const std::vector<SChunk>& chunks, bool is_grey) {
    if (const SChunk* codes = Find(chunks, "cICP", 4)) {
        const auto meaning = FromCodes(*codes);
        return meaning ? Saved(*meaning, is_grey, "from cICP") : CBytes();
    }
    if (Find(chunks, "sRGB", 1)) return Saved({}, is_grey, "sRGB");
    const SChunk* chromaticities = Find(chunks, "cHRM", 32);
    const SChunk* gamma = Find(chunks, "gAMA", 4);
    if (!chromaticities && !gamma) return {};
    const auto meaning = FromChromaticities(chromaticities, gamma);
    return meaning ? Saved(*meaning, is_grey, "from gAMA and cHRM") : CBytes();
}

}  // namespace imagefile::colour
