#include "host/graphics/CIoSculptureEffect.h"

#include <algorithm>

#include "host/graphics/CIoGaussianBlur.h"
#include "host/graphics/ImageHelpers.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/ReliefLighting.h"
#include "hostlib/graphics/Resampling.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

// The relief has two scales: the picture's detail, and its broad shapes, which give it body. Rise
// of white over black at depth 1: in pixels for the detail, in their blur for the shapes.
constexpr float kDetailRise = 2.4F;
constexpr float kShapeRise = 1.1F;
// The blur that leaves the broad shapes: a share of the picture's smaller side, so that a picture
// gets the same body at any resolution.
constexpr double kShapeShare = 1.0 / 50;
// Blur of the relief at smoothness 100, in pixels.
constexpr double kSoftest = 8.0;
// What shows through a pattern that has alpha.
constexpr CColorRef kPaper{0xFFFFFF};
constexpr int kBlock = 32;

void Hold(CRowIteratorBands& held, const CRowIteratorBands& image, bool copy) {
    held = image;
    if (!copy || !image.IsAttached()) return;
    held.Destroy();
    held.Copy(image, 0).ThrowIfFailed();
}

bool MaskFits(const CRowIteratorBands& mask, const CRowIteratorBands& bump) {
    return !mask.IsAttached() ||
           (mask.GetPixelFormat() == ENPixelFormat::Grey8 && mask.GetWidth() == bump.GetWidth() &&
            mask.GetHeight() == bump.GetHeight());
}

// What is seen of the scaled pattern, in the format of the result and at its place: no more than
// one period, and no more than the result is large.
CRowIteratorBands Material(CStatusControl* status, const CRowIteratorBands& pattern,
                           const CSculptureSettings& settings, const CRowIteratorBands& result,
                           const SColorSpecRGB& color_spec) {
    CRowIteratorBands plain;
    plain.Create(1, 1, ENPixelFormat::Colour8).ThrowIfFailed();
    const CColorRef colour{settings.plainColor};
    const int bgr[] = {colour.Blue(), colour.Green(), colour.Red()};
    std::copy_n(bgr, 3, plain.Row<std::uint8_t>(0));
    CRowIteratorBands from = pattern.IsAttached() ? pattern : plain;
    if (from.GetPixelFormat().IsAlphaChannelPresent()) {
        FlattenIteratorWithColor(from, from, GetMask64KLUT(), kPaper).ThrowIfFailed();
    }

    const double scale = std::clamp(settings.size, 1, 1000) / 100.0;
    const auto scaled = [&](int side) {
        return int{ResampledSide(static_cast<int>(scale * side))};
    };
    const CSize size{scaled(from.GetWidth()), scaled(from.GetHeight())};
    const CRect place = result.GetRect();
    const int left = FloorMod(long{place.left} - settings.offsetX, size.cx);
    const int top = FloorMod(long{place.top} - settings.offsetY, size.cy);
    const CRect seen{left, top, left + std::min(size.cx, place.Width()),
                     top + std::min(size.cy, place.Height())};
    CRowIteratorBands resampled;
    CStatusControl step(status);
    ResamplePart(&step, from, resampled, size, seen, true, false).ThrowIfFailed();

    CRowIteratorBands material;
    material.Create(seen.Width(), seen.Height(), result.GetPixelFormat(), {place.left, place.top})
        .ThrowIfFailed();
    for (int y = 0; y < seen.Height(); ++y) {
        ConvertRow(resampled.Row<std::uint8_t>(y), resampled.GetPixelFormat(),
                   material.Row<std::uint8_t>(y), material.GetPixelFormat(), seen.Width(),
                   color_spec);
    }
    return material;
}

// The brightness of a picture, its edge repeated by one pixel on every side.
CRowIteratorBands Heights(CStatusControl* status, const CRowIteratorBands& bump, bool invert,
                          const SColorSpecRGB& color_spec) {
    const int width = bump.GetWidth();
    const int height = bump.GetHeight();
    CRowIteratorBands heights;
    heights.Create(width + 2, height + 2, ENPixelFormat::Grey16).ThrowIfFailed();
    ForEachRowBlock(status, height + 2, kBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            auto* row = heights.Row<std::uint16_t>(y);
            ConvertRow(bump.Row<std::uint8_t>(std::clamp(y - 1, 0, height - 1)),
                       bump.GetPixelFormat(), row + 1, ENPixelFormat::Grey16, width, color_spec);
            row[0] = row[1];
            row[width + 1] = row[width];
            const auto flip = static_cast<std::uint16_t>(invert ? 65535 : 0);
            for (int x = 0; flip && x < width + 2; ++x) row[x] ^= flip;
        }
    }).ThrowIfFailed();
    return heights;
}

CRowIteratorBands Blurred(CStatusControl* status, const CRowIteratorBands& heights, double sigma) {
    CStatusControl step(status);
    CIoGaussianBlur blur(sigma, 3);
    blur.SetStatusControl(&step);
    CRowIteratorBands soft;
    blur(soft, heights).ThrowIfFailed();
    return soft;
}

// What a transparent pixel has for a height: the mean of the visible ones around it, each counted
// by its alpha, so that what is hidden under it carves nothing.
class CVisibleHeights {
  public:
    // `alpha` is 16-bit grey and of the heights' size; `blur` says how far is farther away.
    CVisibleHeights(CStatusControl* status, const CRowIteratorBands& heights,
                    const CRowIteratorBands& alpha, double blur)
        : heights_(heights), alpha_(alpha) {
        CRowIteratorBands weighted;
        weighted.Copy(heights, 0).ThrowIfFailed();
        ForEachRowBlock(status, weighted.GetHeight(), kBlock, [&](int first, int last) {
            for (int y = first; y < last; ++y) {
                auto* row = weighted.Row<std::uint16_t>(y);
                const auto* by = alpha_.Row<std::uint16_t>(y);
                for (int x = 0; x < weighted.GetWidth(); ++x) row[x] = Share(row[x], by[x]);
            }
        }).ThrowIfFailed();
        broad_heights_ = Blurred(status, weighted, blur);
        broad_alpha_ = Blurred(status, alpha, blur);
    }
    std::uint16_t At(int x, int y) const {
        const auto own = alpha_.Row<std::uint16_t>(y)[x];
        const auto height = heights_.Row<std::uint16_t>(y)[x];
        if (own == kOpaque) return height;
        return static_cast<std::uint16_t>(Share(height, own) + Share(Around(x, y), kOpaque - own));
    }

  private:
    static constexpr std::uint32_t kOpaque = 65535;
    static std::uint16_t Share(std::uint32_t value, std::uint32_t alpha) {
        return static_cast<std::uint16_t>((value * std::uint64_t{alpha} + kOpaque / 2) / kOpaque);
    }
    // Of the pixels that touch this one, so that an outline is no cliff; else from farther away.
    std::uint32_t Around(int x, int y) const {
        std::uint64_t sum = 0, weight = 0;
        for (int j = std::max(y - 1, 0); j <= std::min(y + 1, heights_.GetHeight() - 1); ++j) {
            for (int i = std::max(x - 1, 0); i <= std::min(x + 1, heights_.GetWidth() - 1); ++i) {
                const std::uint64_t alpha = alpha_.Row<std::uint16_t>(j)[i];
                sum += alpha * heights_.Row<std::uint16_t>(j)[i];
                weight += alpha;
            }
        }
        if (weight == 0) {
            weight = broad_alpha_.Row<std::uint16_t>(y)[x];
            sum = broad_heights_.Row<std::uint16_t>(y)[x] * std::uint64_t{kOpaque};
        }
        constexpr std::uint64_t kMiddle = kOpaque / 2;
        return static_cast<std::uint32_t>(
            weight == 0 ? kMiddle : std::min<std::uint64_t>(sum / weight, kOpaque));
    }

    const CRowIteratorBands &heights_, &alpha_;
    CRowIteratorBands broad_heights_, broad_alpha_;
};

CRowIteratorBands AlphaOf(const CRowIteratorBands& picture) {
    CRowIteratorBands shown = picture, alpha;
    shown.SetChannelAccess(ENChannel::Alpha, 0).ThrowIfFailed();
    alpha.Create(picture.GetWidth(), picture.GetHeight(), shown.GetAccessFormat()).ThrowIfFailed();
    for (int y = 0; y < alpha.GetHeight(); ++y) CopyShownRow(shown, y, alpha, y);
    return alpha;
}

CRowIteratorBands VisibleHeights(CStatusControl* status, const CRowIteratorBands& heights,
                                 const CRowIteratorBands& picture, double blur) {
    const CRowIteratorBands alpha = Heights(status, AlphaOf(picture), false, {});
    const CVisibleHeights visible(status, heights, alpha, blur);
    CRowIteratorBands made;
    made.CreateCompatible(heights, 2).ThrowIfFailed();
    ForEachRowBlock(status, made.GetHeight(), kBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            auto* row = made.Row<std::uint16_t>(y);
            for (int x = 0; x < made.GetWidth(); ++x) row[x] = visible.At(x, y);
        }
    }).ThrowIfFailed();
    return made;
}

double Softness(const CSculptureSettings& settings) {
    return std::min(settings.smoothness, 100) / 100.0 * kSoftest;
}
double ShapeBlur(const CRowIteratorBands& bump) {
    return std::clamp(std::min(bump.GetWidth(), bump.GetHeight()) * kShapeShare, 2.0, 64.0);
}

CErrorAutoThrow Light(CStatusControl* status, const CSculptureSettings& settings,
                      const CRowIteratorBands& material, std::initializer_list<SHeights> heights,
                      const CRowIteratorBands& bump, CRowIteratorBands& made) {
    const CNPixelFormat format = made.GetPixelFormat();
    const int channels = format.Channels();
    const int alpha = (channels - 1) * format.SampleBytes();
    return LightByHeights(status, CReliefLighting(settings), heights, made, [&](int y) {
        TileRow(material, made, y, 0, made.GetWidth());
        if (!format.IsAlphaChannelPresent()) return;
        CopySampleRow(bump.Row<std::uint8_t>(y) + alpha, channels,
                      made.Row<std::uint8_t>(y) + alpha, channels, 1, format.SampleBytes(),
                      made.GetWidth());
    });
}

// Where the mask is black the picture stays.
CErrorAutoThrow KeepUnmasked(CStatusControl* status, const CRowIteratorBands& picture,
                             const CRowIteratorBands& mask, CRowIteratorBands& made) {
    const int channels = made.GetPixelFormat().Channels();
    return ForEachRowBlock(status, made.GetHeight(), kBlock, [&](int first, int last) {
        VisitDepth(made.GetPixelFormat().Is16bit(), [&](auto sample) {
            using Sample = decltype(sample);
            for (int y = first; y < last; ++y) {
                const auto* weights = mask.Row<std::uint8_t>(y);
                const auto* kept = picture.Row<Sample>(y);
                auto* out = made.Row<Sample>(y);
                for (int i = 0; i < made.GetWidth() * channels; ++i) {
                    const int weight = weights[i / channels];
                    out[i] = static_cast<Sample>(
                        (out[i] * weight + kept[i] * (255 - weight) + 127) / 255);
                }
            }
        });
    });
}

}  // namespace

void CIoSculptureEffect::SetSourceDib(const CRowIteratorBands& pattern, bool copy) {
    Hold(pattern_, pattern, copy);
}
void CIoSculptureEffect::SetBumpDib(const CRowIteratorBands& bump, bool copy) {
    Hold(bump_, bump, copy);
}
void CIoSculptureEffect::SetMaskDib(const CRowIteratorBands& mask, bool copy) {
    Hold(mask_, mask, copy);
}

bool CIoSculptureEffect::UpdateSettings(const CSculptureSettings& settings) {
    const bool changed = !(settings == settings_);
    settings_ = settings;
    return changed;
}

CErrorAutoThrow CIoSculptureEffect::ApplyEffect(CStatusControl* status,
                                                CRowIteratorBands& destination,
                                                const SColorSpecRGB& color_spec) {
    if (!bump_.IsAttached() || !MaskFits(mask_, bump_)) return TolmErrorCode::UnusableInput;
    return CatchErrors([&]() -> CErrorAutoThrow {
        const bool soft = settings_.smoothness > 0;
        const bool alpha = bump_.GetPixelFormat().IsAlphaChannelPresent();
        if (status) {
            status->SetNumberOfSteps(4 + (alpha ? 5 : 0) + (soft ? 1 : 0) +
                                     (mask_.IsAttached() ? 1 : 0));
        }
        CRowIteratorBands bump = bump_;
        bump.SetChannelAccess(ENChannel::All, 0).ThrowIfFailed();
        PrepareDestination(destination, bump).ThrowIfFailed();
        const CRowIteratorBands material =
            Material(status, pattern_, settings_, destination, color_spec);
        CRowIteratorBands heights = Heights(status, bump, settings_.invert != 0, color_spec);
        const double broad = ShapeBlur(bump);
        if (alpha) heights = VisibleHeights(status, heights, bump, broad);
        if (soft) heights = Blurred(status, heights, Softness(settings_));
        const CRowIteratorBands shapes = Blurred(status, heights, broad);
        const float shape_rise = kShapeRise * static_cast<float>(broad);
        Light(status, settings_, material, {{heights, kDetailRise}, {shapes, shape_rise}}, bump,
              destination)
            .ThrowIfFailed();
        if (mask_.IsAttached()) KeepUnmasked(status, bump, mask_, destination).ThrowIfFailed();
        return {};
    });
}
