#include "engine/CTangentPipes.h"

#include <cmath>
#include <cstdlib>

#include "engine/StrokeField.h"

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

template <int kChannels>
void CTangentPipes::DrawPipe(CPoint from, CPoint to, int pipe_width, TColour<kChannels> shade,
                             int pipe_transparency) {
    const std::int64_t axis_x = to.x - from.x;
    const std::int64_t axis_y = to.y - from.y;
    double length = std::sqrt(static_cast<double>(axis_y * axis_y + axis_x * axis_x));
    if (length == 0.0) length = 1.0;
    const double ux = static_cast<double>(axis_x) / length;
    const double uy = static_cast<double>(axis_y) / length;
    const int white = pixelFormat.Is16bit() ? 65535 : 255;
    for (int i = -pipe_width; i <= pipe_width; ++i) {
        // Each strand's shade follows from the one before. A pipe of one strand keeps the colour.
        const int divisor = std::abs(i) + pipe_width;
        for (int& component : shade) {
            if (divisor == 0) break;
            component = Clamp(3 * (pipe_width * component) / 2 / divisor, 0, white);
        }
        const auto shifted = [&](CPoint p) {
            return CPoint{static_cast<int>(p.x - i * uy), static_cast<int>(p.y + i * ux)};
        };
        DrawAALine<kChannels>(shifted(from), shifted(to), shade, pipe_transparency);
    }
}

template <int kChannels>
CErrorAutoThrow CTangentPipes::DrawPipes() {
    return AtDepth<kChannels>([this](auto traits) {
        return ScatterStrokes<decltype(traits)>(
            *source, WorkRectangle(), pipeCount, *status, [this](const TStrokePoint<kChannels>& p) {
                const auto reach = [&](int across) {
                    return static_cast<int>(static_cast<double>(lengthFactor * across) /
                                            p.steepness);
                };
                const int tx = reach(p.gradient_y);
                const int ty = reach(-p.gradient_x);
                DrawPipe<kChannels>({p.x - tx, p.y - ty}, {p.x + tx, p.y + ty}, widthFactor,
                                    p.colour, transparency);
            });
    });
}
