#include "app/imagefile/encode/RowSource.h"

#include "host/graphics/PixelMath.h"
#include "hostlib/graphics/SwapColours.h"

namespace imagefile {

namespace {

int Channels(CNPixelFormat from, const SKind& kind) {
    const bool keeps_alpha = from.IsAlphaChannelPresent() && kind.holds_alpha;
    return (kind.holds_grey ? from.ColourChannels() : 3) + (keeps_alpha ? 1 : 0);
}

template <class From, class To>
typename To::Sample Depth(std::int64_t value) {
    if (From::kIs16bit && !To::kIs16bit) value = pixel::NearestByte(static_cast<int>(value));
    return static_cast<typename To::Sample>(value);
}

// 8 of 16 bits to nearest; without an alpha channel the picture lies on white.
template <class From, class To>
void Convert(From, const typename From::Sample* source, To, void* row, int width) {
    auto* out = static_cast<typename To::Sample*>(row);
    for (int x = 0; x < width; ++x) {
        const auto* in = source + x * From::kChannels;
        const int alpha = From::kHasAlpha ? in[From::kChannels - 1] : From::kMaximum;
        for (int c = 0; c < To::kColourChannels; ++c) {
            std::int64_t value = in[From::kColourChannels == 3 ? 2 - c : 0];
            if (From::kHasAlpha && !To::kHasAlpha) {
                value = value * alpha + std::int64_t{From::kMaximum} * (From::kMaximum - alpha);
                value = (value + From::kMaximum / 2) / From::kMaximum;
            }
            *out++ = Depth<From, To>(value);
        }
        if (To::kHasAlpha) *out++ = Depth<From, To>(alpha);
    }
}

}  // namespace

CRowSource::CRowSource(const CRowIteratorBands& pixels, const SKind& kind)
    : pixels_(pixels),
      from_(pixels.GetPixelFormat()),
      to_(CNPixelFormat::Of(Channels(from_, kind), from_.Is16bit() && kind.holds_16bit)) {}

void CRowSource::Get(int y, void* row) const {
    VisitPixelFormat(from_, 0, [&](auto traits) {
        using Traits = decltype(traits);
        const auto* source = pixels_.Row<typename Traits::Sample>(y);
        if (from_ == to_) {
            SwapColours(source, row, Width(), from_);
        } else {
            VisitPixelFormat(to_, 0, [&](auto wanted) {
                Convert(traits, source, wanted, row, Width());
                return 0;
            });
        }
        return 0;
    });
}

}  // namespace imagefile
