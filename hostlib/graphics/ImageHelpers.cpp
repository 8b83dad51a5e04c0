#include "host/graphics/ImageHelpers.h"

#include <algorithm>
#include <array>

#include "host/graphics/PixelMath.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

constexpr int kRowsPerBlock = 64;

bool SameSize(const CRowIteratorBands& a, const CRowIteratorBands& b) {
    return a.IsAttached() && b.IsAttached() && a.GetWidth() == b.GetWidth() &&
           a.GetHeight() == b.GetHeight() &&
           a.GetPixelFormat().Is16bit() == b.GetPixelFormat().Is16bit();
}

// A second handle on an image that shows other channels.
CRowIteratorBands Showing(const CRowIteratorBands& image, ENChannel channel) {
    CRowIteratorBands handle = image;
    handle.SetChannelAccess(channel, 0).Ignore();
    return handle;
}

CErrorAutoThrow CopyShown(CStatusControl* status, const CRowIteratorBands& source,
                          CRowIteratorBands& destination) {
    return ForEachRowBlock(status, source.GetHeight(), kRowsPerBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) CopyShownRow(source, y, destination, y);
    });
}

// 8-bit: c plus or minus the table's share of the distance to the sample.
struct CBlendBytes {
    const std::uint8_t* table;
    std::uint8_t operator()(std::uint8_t sample, int colour, std::uint8_t alpha) const {
        const std::uint8_t* row = table + alpha * 256;
        return static_cast<std::uint8_t>(sample >= colour ? colour + row[sample - colour]
                                                          : colour - row[colour - sample]);
    }
};
struct CBlendWords {
    std::uint16_t operator()(std::uint16_t sample, int colour, std::uint16_t alpha) const {
        const auto c = static_cast<std::uint64_t>(colour) * (65535U - alpha);
        return static_cast<std::uint16_t>((std::uint64_t{sample} * alpha + c + 32767U) / 65535U);
    }
};

template <class Traits, class Blend>
void FlattenRow(const typename Traits::Sample* in, typename Traits::Sample* out, int pixels,
                const int* colour, const Blend& blend) {
    for (int x = 0; x < pixels; ++x, in += Traits::kChannels, out += Traits::kColourChannels) {
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            out[c] = blend(in[c], colour[c], in[Traits::kChannels - 1]);
        }
    }
}

template <class Traits>
CErrorAutoThrow Flatten(const CRowIteratorBands& source, CRowIteratorBands& output,
                        const std::uint8_t* table, CColorRef colour) {
    using Sample = typename Traits::Sample;
    constexpr int scale = pixel::FromByte<Sample>(1);
    const bool grey = Traits::kColourChannels == 1;
    const int wanted[3] = {scale * (grey ? colour.Grey() : colour.Blue()), scale * colour.Green(),
                           scale * colour.Red()};
    return ForEachRowBlock(nullptr, source.GetHeight(), kRowsPerBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            if constexpr (Traits::kIs16bit) {
                FlattenRow<Traits>(source.Row<Sample>(y), output.Row<Sample>(y), source.GetWidth(),
                                   wanted, CBlendWords{});
            } else {
                FlattenRow<Traits>(source.Row<Sample>(y), output.Row<Sample>(y), source.GetWidth(),
                                   wanted, CBlendBytes{table});
            }
        }
    });
}

}  // namespace

CErrorAutoThrow RowIterator_Tile(CRowIteratorBands& output, const CRowIteratorBands& tile,
                                 const CRect* area) {
    if (!output.IsAttached() || !tile.IsAttached()) return TolmErrorCode::UnusableInput;
    const CRect whole{0, 0, output.GetWidth(), output.GetHeight()};
    CRect to = area ? *area : whole;
    to = {std::max(to.left, 0), std::max(to.top, 0), std::min(to.right, whole.right),
          std::min(to.bottom, whole.bottom)};
    if (to.IsRectEmpty()) return {};
    return ForEachRowBlock(nullptr, to.Height(), kRowsPerBlock, [&](int first, int last) {
        for (int y = to.top + first; y < to.top + last; ++y) {
            TileRow(tile, output, y, to.left, to.Width());
        }
    });
}

CErrorAutoThrow RowIterator_CopyAlpha(CRowIteratorBands& destination,
                                      const CRowIteratorBands& source) {
    if (!SameSize(destination, source) || !source.GetPixelFormat().IsAlphaChannelPresent() ||
        !destination.GetPixelFormat().IsAlphaChannelPresent()) {
        return TolmErrorCode::UnusableInput;
    }
    CRowIteratorBands to = Showing(destination, ENChannel::Alpha);
    return CopyShown(nullptr, Showing(source, ENChannel::Alpha), to);
}

CErrorAutoThrow RowIterator_CopyColor(CRowIteratorBands& destination,
                                      const CRowIteratorBands& source) {
    if (!SameSize(destination, source) ||
        source.GetPixelFormat().ColourChannels() != destination.GetPixelFormat().ColourChannels()) {
        return TolmErrorCode::UnusableInput;
    }
    CRowIteratorBands to = Showing(destination, ENChannel::Colour);
    return CopyShown(nullptr, Showing(source, ENChannel::Colour), to);
}

CErrorAutoThrow AddAlphaChannel(CStatusControl* status, const CRowIteratorBands& colour,
                                CRowIteratorBands& output, CNPixelFormat format,
                                const CRowIteratorBands& alpha, const CRowIteratorBands* mask,
                                bool replace, const CPoint* offset) {
    if (mask || offset || !replace) return TolmErrorCode::NotAvailable;
    if (!SameSize(colour, alpha) || !format.IsAlphaChannelPresent() ||
        format.Is16bit() != colour.GetPixelFormat().Is16bit() ||
        format.ColourChannels() != colour.GetPixelFormat().ColourChannels()) {
        return TolmErrorCode::UnusableInput;
    }
    const bool lone = alpha.GetAccessFormat().Channels() == 1;
    if (!lone && !alpha.GetPixelFormat().IsAlphaChannelPresent()) {
        return TolmErrorCode::UnusableInput;
    }
    const CRect place = colour.GetRect();
    CRowIteratorBands made;
    CErrorAutoThrow result =
        made.Create(colour.GetWidth(), colour.GetHeight(), format, {place.left, place.top});
    if (result.Failed()) return result;
    const CRowIteratorBands colour_in = Showing(colour, ENChannel::Colour);
    const CRowIteratorBands alpha_in = lone ? alpha : Showing(alpha, ENChannel::Alpha);
    CRowIteratorBands colour_out = Showing(made, ENChannel::Colour);
    CRowIteratorBands alpha_out = Showing(made, ENChannel::Alpha);
    result = ForEachRowBlock(status, made.GetHeight(), kRowsPerBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            CopyShownRow(colour_in, y, colour_out, y);
            CopyShownRow(alpha_in, y, alpha_out, y);
        }
    });
    if (!result.Failed()) output = made;
    return result;
}

const std::uint8_t* GetMask64KLUT() {
    static const auto table = [] {
        std::array<std::uint8_t, 65536> made{};
        for (std::size_t alpha = 0; alpha < 256; ++alpha) {
            for (std::size_t v = 0; v < 256; ++v) {
                made[alpha * 256 + v] = static_cast<std::uint8_t>((v * alpha + 127) / 255);
            }
        }
        return made;
    }();
    return table.data();
}

CErrorAutoThrow FlattenIteratorWithColor(const CRowIteratorBands& source, CRowIteratorBands& output,
                                         const std::uint8_t* table, CColorRef colour) {
    if (!source.IsAttached() || !table) return TolmErrorCode::UnusableInput;
    const CNPixelFormat format = source.GetPixelFormat();
    const CRect place = source.GetRect();
    CRowIteratorBands made;
    CErrorAutoThrow result = made.Create(
        source.GetWidth(), source.GetHeight(),
        CNPixelFormat::Of(format.ColourChannels(), format.Is16bit()), {place.left, place.top});
    if (result.Failed()) return result;
    if (!format.IsAlphaChannelPresent()) {
        result = RowIterator_CopyColor(made, source);
    } else {
        result = VisitPixelFormat(
            format, CErrorAutoThrow(TolmErrorCode::UnusableInput),
            [&](auto traits) { return Flatten<decltype(traits)>(source, made, table, colour); });
    }
    if (!result.Failed()) output = made;
    return result;
}

CErrorAutoThrow DeleteAlphaChannel(const CRowIteratorBands& source, CRowIteratorBands& output,
                                   const std::uint8_t* table, CColorRef colour) {
    return FlattenIteratorWithColor(source, output, table, colour);
}

CErrorAutoThrow GreyScaleDIB(CStatusControl* status, const CRowIteratorBands& source,
                             CRowIteratorBands& output, const SColorSpecRGB& color_spec) {
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    const CNPixelFormat format = source.GetPixelFormat();
    const CRect place = source.GetRect();
    CRowIteratorBands made;
    CErrorAutoThrow result = made.Create(
        source.GetWidth(), source.GetHeight(),
        CNPixelFormat::Of(format.IsAlphaChannelPresent() ? 2 : 1, true), {place.left, place.top});
    if (result.Failed()) return result;
    result = ForEachRowBlock(status, made.GetHeight(), kRowsPerBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            ConvertRow(source.Row<std::uint8_t>(y), format, made.Row<std::uint8_t>(y),
                       made.GetPixelFormat(), made.GetWidth(), color_spec);
        }
    });
    if (!result.Failed()) output = made;
    return result;
}
