#include "engine/CPeriodic.h"

#include <cstdlib>

#include "engine/Planes.h"
#include "host/core/Multiversion.h"

namespace {

// The mean brightness of a pixel in 8-bit terms: of its samples as they are, then the high byte.
template <class Sample>
CMDTEXTURE_INLINE Lane MeanBrightness(Lane b, Lane g, Lane r) {
    if constexpr (sizeof(Sample) == 1) return ToLane(ToLane(b + g + r) / 3);
    // The sum has 18 bits. The low bytes matter to the result only by what they carry.
    const Lane low = ToLane((b & 255) + (g & 255) + (r & 255));
    const Lane high = ToLane((b >> 8) + (g >> 8) + (r >> 8) + (low >> 8));
    return ToLane(high / 3);
}

// How much a pixel of that brightness is scaled, in 1/1024: a triangle wave with `periods` / 32
// turns over the range, times the gain; 0 to 127 * 20.
CMDTEXTURE_INLINE Lane BandFactor(Lane brightness, Lane periods, Lane gain) {
    const Lane phase = ToLane(ToLane(brightness * periods) >> 5);
    const auto turn = static_cast<std::int16_t>(phase % 255 - 127);
    return ToLane(ToLane(turn < 0 ? -turn : turn) * gain);
}

// A sample scaled by factor / 1024 and kept at or below 255 or, `only_darker`, its own value.
template <class Sample>
CMDTEXTURE_INLINE Lane Banded(Lane sample, Lane factor, bool only_darker) {
    const Lane value = ToLane(pixel::ToByte<Sample>(sample));
    // (value * factor) >> 10 as the upper half of a product of lanes; at most 632.
    const auto scaled =
        static_cast<std::int16_t>((std::uint32_t{ToLane(value << 6)} * factor) >> 16);
    const auto limit = static_cast<std::int16_t>(only_darker ? value : 255);
    return ToLane(pixel::FromByte<Sample>(scaled < limit ? scaled : limit));
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void BandRow(const typename Traits::Sample* from,
                                     typename Traits::Sample* to, int pixels, Lane periods,
                                     Lane gain, bool only_darker) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    TPlanes<n> planes;
    auto& plane = planes.channel;
    alignas(64) Lane factor[kBlockPixels];
    for (int done = 0; done < pixels; done += kBlockPixels) {
        const int count = std::min(kBlockPixels, pixels - done);
        Split<Traits>(from + done * n, count, planes);
        for (int x = 0; x < count; ++x) {
            if constexpr (Traits::kColourChannels == 3) {
                factor[x] = MeanBrightness<Sample>(plane[0][x], plane[1][x], plane[2][x]);
            } else {
                factor[x] = ToLane(pixel::ToByte<Sample>(plane[0][x]));
            }
        }
        for (int x = 0; x < count; ++x) factor[x] = BandFactor(factor[x], periods, gain);
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            for (int x = 0; x < count; ++x) {
                plane[c][x] = Banded<Sample>(plane[c][x], factor[x], only_darker);
            }
        }
        Merge<Traits>(planes, count, to + done * n);
    }
}

// One sample of CPeriodic5: `step` 5 to 256, `period` 2 * step + 1.
struct SSawtooth {
    explicit SSawtooth(int slope_in, int step_in)
        : slope(ToLane(slope_in)),
          step(ToLane(step_in)),
          period(ToLane(2 * step_in + 1)),
          reciprocal(ToLane(65536 / period + 1)) {}

    template <class Sample>
    CMDTEXTURE_INLINE Lane Of(Lane sample) const {
        const int value = pixel::ToByte<Sample>(sample);
        const Lane phase = ToLane(ToLane(value * slope) >> 4);  // at most 2040
        // phase % period: the quotient by the reciprocal is right or 1 too large.
        const Lane quotient = ToLane(static_cast<int>((std::uint32_t{phase} * reciprocal) >> 16));
        const auto rest = static_cast<std::int16_t>(phase - quotient * period);
        const auto wave = static_cast<std::int16_t>((rest < 0 ? rest + period : rest) - step);
        const auto lifted = static_cast<std::int16_t>(2 * std::abs(wave) - step + value);
        const auto clamped = static_cast<std::int16_t>(pixel::Clamp(lifted, 0, 255));
        return ToLane(pixel::FromByte<Sample>(pixel::Clamp(clamped, value, 255)));
    }

    Lane slope, step, period, reciprocal;
};

template <class Traits>
CMDTEXTURE_MULTIVERSION void SawtoothRow(const typename Traits::Sample* from,
                                         typename Traits::Sample* to, int pixels,
                                         SSawtooth sawtooth) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    TPlanes<n> planes;
    for (int done = 0; done < pixels; done += kBlockPixels) {
        const int count = std::min(kBlockPixels, pixels - done);
        Split<Traits>(from + done * n, count, planes);
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            for (int x = 0; x < count; ++x) {
                planes.channel[c][x] = sawtooth.Of<Sample>(planes.channel[c][x]);
            }
        }
        Merge<Traits>(planes, count, to + done * n);
    }
}

}  // namespace

void CPeriodic::ComputeGreyAlpha() {
    ComputeGrey();
    outAlpha = alpha[0];
}

void CPeriodic::ComputeRGBA() {
    ComputeRGB();
    outAlpha = alpha[0];
}

CTriangleBands::CTriangleBands(bool only_darker) : only_darker_(only_darker) {
    params.Add(L"Number of periods", 1, 256, 32, 0);
    params.Add(L"Luminance", 10, 20, 10, 0);
}

void CTriangleBands::ReadParameters() {
    params.ClampValues();
    periods = ValueOf(L"Number of periods");
    gain = ValueOf(L"Luminance");
}

void CTriangleBands::ComputeGrey() {
    outGrey = AtDepth<1>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const Lane value = ToLane(pixel::ToByte<Sample>(grey[0]));
        const Lane factor = BandFactor(value, ToLane(periods), ToLane(gain));
        return Banded<Sample>(ToLane(grey[0]), factor, only_darker_);
    });
}

void CTriangleBands::ComputeRGB() {
    AtDepth<3>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const Lane b = ToLane(blue[0]), g = ToLane(green[0]), r = ToLane(red[0]);
        const Lane factor =
            BandFactor(MeanBrightness<Sample>(b, g, r), ToLane(periods), ToLane(gain));
        outBlue = Banded<Sample>(b, factor, only_darker_);
        outGreen = Banded<Sample>(g, factor, only_darker_);
        outRed = Banded<Sample>(r, factor, only_darker_);
    });
}

void CTriangleBands::ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const {
    VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        BandRow<decltype(traits)>(reinterpret_cast<const Sample*>(from),
                                  reinterpret_cast<Sample*>(to), pixels, ToLane(periods),
                                  ToLane(gain), only_darker_);
        return true;
    });
}

CPeriodic5::CPeriodic5() {
    params.Add(L"Number of periods", 2, 100, 6, 0);
    params.Add(L"Slope", 1, 128, 16, 0);
}

void CPeriodic5::ReadParameters() {
    params.ClampValues();
    halfPeriods = ValueOf(L"Number of periods") / 2;
    slope = ValueOf(L"Slope");
    step = halfPeriods == 0 ? 256 : 256 / halfPeriods;
}

void CPeriodic5::ComputeGrey() {
    outGrey = AtDepth<1>([this](auto traits) {
        return SSawtooth(slope, step).Of<typename decltype(traits)::Sample>(ToLane(grey[0]));
    });
}

void CPeriodic5::ComputeRGB() {
    AtDepth<3>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const SSawtooth sawtooth(slope, step);
        outBlue = sawtooth.Of<Sample>(ToLane(blue[0]));
        outGreen = sawtooth.Of<Sample>(ToLane(green[0]));
        outRed = sawtooth.Of<Sample>(ToLane(red[0]));
    });
}

void CPeriodic5::ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const {
    VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const auto* samples = reinterpret_cast<const Sample*>(from);
        auto* results = reinterpret_cast<Sample*>(to);
        const SSawtooth sawtooth(slope, step);
        if constexpr (traits.kHasAlpha) {
            SawtoothRow<decltype(traits)>(samples, results, pixels, sawtooth);
        } else {  // all samples alike: a row of grey pixels
            SawtoothRow<TPixelTraits<Sample, 1>>(samples, results, pixels * traits.kChannels,
                                                 sawtooth);
        }
        return true;
    });
}
