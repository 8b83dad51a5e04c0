#include "engine/CCotangentLines.h"

#include "engine/StrokeField.h"

CCotangentLines::CCotangentLines() {
    params.Add(L"Number of lines", 1, 100, 33, 0);
    params.Add(L"Length of lines", 1, 100, 5, 0);
    params.Add(L"Transparency", 0, 255, 127, 0);
}

void CCotangentLines::ReadParameters() {
    params.ClampValues();
    lineCount = ValueOf(L"Number of lines") * 320;
    lineLength = ValueOf(L"Length of lines");
    transparency = ValueOf(L"Transparency");
}

template <int kChannels>
CErrorAutoThrow CCotangentLines::DrawHairs() {
    return AtDepth<kChannels>([this](auto traits) {
        return ScatterStrokes<decltype(traits)>(
            *source, WorkRectangle(), lineCount, *status, [this](const TStrokePoint<kChannels>& p) {
                const auto reach = [&](int gradient) {
                    return static_cast<int>(static_cast<double>(lineLength * gradient) /
                                            p.steepness);
                };
                const int dx = reach(p.gradient_x);
                const int dy = reach(p.gradient_y);
                DrawAALine<kChannels>({p.x + dx, p.y + dy}, {p.x - dx, p.y - dy}, p.colour,
                                      transparency);
            });
    });
}
