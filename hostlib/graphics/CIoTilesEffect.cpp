#include "host/graphics/CIoTilesEffect.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/ReliefLighting.h"
#include "hostlib/graphics/RowSamples.h"
#include "hostlib/graphics/TileGrid.h"

namespace {

// Rise of a bevel per pixel at depth 1.
constexpr double kBevelSlope = 0.4;
// A pixel's light is the mean over so many points of it each way: outlines come out smooth.
constexpr int kPoints = 3;

// The relief of one tile: its edge rises from the outline, from a straight bevel (smoothness 0) to
// a pillow over the whole tile (1). Above 0 the slope swells and fades without a jump.
class CBevel {
  public:
    CBevel(double inradius, double smoothness, double slope)
        : width_(inradius * (kStraight + (1 - kStraight) * smoothness * (1.6 - 0.6 * smoothness))),
          swell_(kSwell * smoothness * (2 - smoothness) * width_),
          fade_(smoothness * (width_ - swell_)),
          // A slope that fades rises less: it begins the steeper.
          slope_(slope * (1 + 0.7 * smoothness)) {}
    // Rise per pixel at a distance from the outline.
    double SlopeAt(double inside) const {
        if (inside <= 0 || inside >= width_) return 0;
        return slope_ * Ramp(inside, swell_) * Ramp(width_ - inside, fade_);
    }
    // How much of a place is tile and not grout: the foot of a soft edge sinks into the grout, or
    // it would be seen as a bright ring around the side in shadow.
    double CoverAt(double inside) const { return inside > 0 ? Ramp(inside, swell_) : 0; }

  private:
    static constexpr double kStraight = 0.22;  // share of the way to the middle that is bevelled
    static constexpr double kSwell = 0.2;      // share of the edge on which the slope swells
    static double Ramp(double at, double length) {
        const double t = length > 0 ? std::min(at / length, 1.0) : 1.0;
        return t * t * (3 - 2 * t);
    }
    double width_, swell_, fade_, slope_;
};

// The light of one period of the tiling, or of as much of it as the picture is large, beginning
// with the picture's first pixel: the whole picture's light is repeats of it.
class CTileLight {
  public:
    CTileLight(const CTilesSettings& settings, const CReliefLighting& lighting, const CRect& place)
        : lighting_(lighting),
          grid_(static_cast<ETileShape>(std::clamp(settings.tileShape, 0, 2)),
                std::clamp(settings.tileSize, 1, 1024), std::clamp(settings.borderSize, 0, 256),
                1 - std::clamp(settings.tileAngularity, 0, 100) / 100.0,
                Smoothness(settings) * (2 - Smoothness(settings))),
          bevel_(grid_.Inradius(), Smoothness(settings), kBevelSlope * lighting.HeightScale()),
          grout_(1 - static_cast<float>(std::clamp(settings.groutShade, 0, 100)) / 100),
          left_(FloorMod(place.left, grid_.PeriodX())),
          top_(FloorMod(place.top, grid_.PeriodY())),
          period_(std::min(grid_.PeriodX(), place.Width())),
          width_(std::min((kRun / period_ + 1) * period_, place.Width())),
          height_(std::min(grid_.PeriodY(), place.Height())),
          shade_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)),
          gloss_(shade_.size()) {}

    CErrorAutoThrow Compute() {
        return ForEachRowBlock(nullptr, height_, 4, [this](int first, int last) {
            for (int y = first; y < last; ++y) ComputeRow(y);
        });
    }
    // Lights the picture's row y, of `pixels` pixels that begin at `row`.
    void LightRow(CNPixelFormat format, int y, std::uint8_t* row, int pixels) const {
        const auto at = static_cast<std::size_t>(y % height_) * static_cast<std::size_t>(width_);
        for (int x = 0; x < pixels; x += width_) {
            lighting_.ApplyRow(format, row + x * format.PixelBytes(), shade_.data() + at,
                               gloss_.data() + at, std::min(width_, pixels - x));
        }
    }

  private:
    // The light of several periods lies in a row, about so many pixels of it: rows are lit in runs
    // that are long beside what one costs, and short enough to stay in the processor's cache.
    static constexpr int kRun = 1024;
    static double Smoothness(const CTilesSettings& settings) {
        return std::clamp(settings.smoothness, 0, 100) / 100.0;
    }
    // From the slopes of the points of a row of pixels, kPoints a pixel, and how much of each is
    // grout.
    void ComputeRow(int y) {
        const auto points = static_cast<std::size_t>(period_) * kPoints;
        std::vector<float> slope_x(points), slope_y(points), shade(points), gloss(points);
        const auto row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
        constexpr float kShare = 1.0F / (kPoints * kPoints);
        for (int part = 0; part < kPoints; ++part) {
            std::vector<float> cover(points);
            // Within the first period, so that every repeat is the same to the bit.
            const double at_y = (top_ + y) % grid_.PeriodY() + (part + 0.5) / kPoints;
            for (std::size_t i = 0; i < points; ++i) {
                const int column = (left_ + static_cast<int>(i / kPoints)) % grid_.PeriodX();
                const double at_x = column + (static_cast<double>(i % kPoints) + 0.5) / kPoints;
                const STilePlace place = grid_.PlaceOf(at_x, at_y);
                const double slope = bevel_.SlopeAt(place.inside);
                slope_x[i] = static_cast<float>(slope * place.grow_x);
                slope_y[i] = static_cast<float>(slope * place.grow_y);
                cover[i] = grout_ + (1 - grout_) * static_cast<float>(bevel_.CoverAt(place.inside));
            }
            lighting_.LightRow(slope_x.data(), slope_y.data(), shade.data(), gloss.data(),
                               period_ * kPoints);
            for (std::size_t i = 0; i < points; ++i) {
                shade_[row + i / kPoints] += kShare * cover[i] * shade[i];
                gloss_[row + i / kPoints] += kShare * gloss[i];
            }
        }
        const auto period = static_cast<std::size_t>(period_);
        for (std::size_t x = row + period; x < row + static_cast<std::size_t>(width_); ++x) {
            shade_[x] = shade_[x - period];
            gloss_[x] = gloss_[x - period];
        }
    }

    const CReliefLighting& lighting_;
    CTileGrid grid_;
    CBevel bevel_;
    float grout_;  // its brightness
    int left_, top_, period_, width_, height_;
    std::vector<float> shade_, gloss_;
};

}  // namespace

CErrorAutoThrow CIoTilesEffect::operator()(CRowIteratorBands& destination,
                                           const CRowIteratorBands& source) {
    const CRowIteratorBands input = source;  // the destination may be the same object
    return CatchErrors([&]() -> CErrorAutoThrow {
        PrepareDestination(destination, input).ThrowIfFailed();
        const CReliefLighting lighting(settings_);
        CTileLight tiles(settings_, lighting, input.GetRect());
        tiles.Compute().ThrowIfFailed();
        const int width = input.GetWidth();
        const CNPixelFormat format = destination.GetPixelFormat();
        return ForEachRowBlock(Status(), input.GetHeight(), 16, [&](int first, int last) {
            for (int y = first; y < last; ++y) {
                CopyShownRow(input, y, destination, y);
                tiles.LightRow(format, y, destination.Row<std::uint8_t>(y), width);
            }
        });
    });
}
