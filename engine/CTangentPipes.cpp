#include "engine/CTangentPipes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "engine/StrokeField.h"

namespace {

// A pipe around an axis from one point to another, `width` strands on either side of it.
template <class Traits>
struct TPipe {
    CSize bounds;
    CPoint from, to;
    TColour<Traits::kChannels> colour;
    int width;
    int transparency;

    CStrokeBands::SRows Rows() const {
        // Strands lie at most `width` pixels beside the axis.
        const auto [top, bottom] = std::minmax(from.y, to.y);
        const CSoftLine highest(bounds, {0, top - width - 1}, {0, top - width - 1});
        const CSoftLine lowest(bounds, {0, bottom + width + 1}, {0, bottom + width + 1});
        return {highest.Rows().first, lowest.Rows().last};
    }

    void Draw(const SCanvas& canvas) const {
        const std::int64_t axis_x = to.x - from.x;
        const std::int64_t axis_y = to.y - from.y;
        double length = std::sqrt(static_cast<double>(axis_y * axis_y + axis_x * axis_x));
        if (length == 0.0) length = 1.0;
        const double ux = static_cast<double>(axis_x) / length;
        const double uy = static_cast<double>(axis_y) / length;
        TColour<Traits::kChannels> shade = colour;
        for (int i = -width; i <= width; ++i) {
            // Each strand's shade follows from the one before. A pipe of one strand keeps the
            // colour.
            const int divisor = std::abs(i) + width;
            for (int& component : shade) {
                if (divisor == 0) break;
                component =
                    pixel::Clamp(3 * (width * component) / 2 / divisor, 0, Traits::kMaximum);
            }
            const auto shifted = [&](CPoint p) {
                return CPoint{static_cast<int>(p.x - i * uy), static_cast<int>(p.y + i * ux)};
            };
            CSoftLine(bounds, shifted(from), shifted(to)).Draw<Traits>(canvas, shade, transparency);
        }
    }
};

}  // namespace

CTangentPipes::CTangentPipes() {
    params.Add(L"Number of pipes", 1, 100, 33, 0);
    params.Add(L"Length factor", 1, 20, 5, 0);
    params.Add(L"Width factor", 0, 40, 1, 0);
    params.Add(L"Transparency", 0, 255, 128, 0);
}

void CTangentPipes::ReadParameters() {
    params.ClampValues();
    pipeCount = ValueOf(L"Number of pipes") * 320;
    lengthFactor = ValueOf(L"Length factor");
    widthFactor = ValueOf(L"Width factor");
    transparency = ValueOf(L"Transparency");
}

std::unique_ptr<IStrokeParts> CTangentPipes::MakeParts() const {
    return AtLayout([this](auto traits) {
        return MakeStrokes<decltype(traits)>(
            *source, WorkRectangle(), pipeCount, Workers(), [this](const auto& point) {
                const auto reach = [&](int across) {
                    return static_cast<int>(static_cast<double>(lengthFactor * across) /
                                            point.steepness);
                };
                const int tx = reach(point.gradient_y);
                const int ty = reach(-point.gradient_x);
                return TPipe<decltype(traits)>{{width, height},
                                               {point.x - tx, point.y - ty},
                                               {point.x + tx, point.y + ty},
                                               point.colour,
                                               widthFactor,
                                               transparency};
            });
    });
}

template <int kChannels>
void CTangentPipes::DrawPipe(CPoint from, CPoint to, int pipe_width,
                             const TColour<kChannels>& colour, int pipe_transparency) {
    AtDepth<kChannels>([&](auto traits) {
        TPipe<decltype(traits)>{{width, height}, from, to, colour, pipe_width, pipe_transparency}
            .Draw(DestinationRows(0, DestinationEnd()));
    });
}

template void CTangentPipes::DrawPipe<1>(CPoint, CPoint, int, const TColour<1>&, int);
template void CTangentPipes::DrawPipe<2>(CPoint, CPoint, int, const TColour<2>&, int);
template void CTangentPipes::DrawPipe<3>(CPoint, CPoint, int, const TColour<3>&, int);
template void CTangentPipes::DrawPipe<4>(CPoint, CPoint, int, const TColour<4>&, int);
