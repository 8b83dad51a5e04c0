#include "engine/CCotangentLines.h"

#include "engine/StrokeField.h"

namespace {

template <class Traits>
struct THair {
    CSoftLine line;
    TColour<Traits::kChannels> colour;
    int transparency;

    CStrokeBands::SRows Rows() const { return line.Rows(); }
    void Draw(const SCanvas& canvas) const { line.Draw<Traits>(canvas, colour, transparency); }
};

}  // namespace

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

std::unique_ptr<IStrokeParts> CCotangentLines::MakeParts() const {
    return AtLayout([this](auto traits) {
        return MakeStrokes<decltype(traits)>(
            *source, WorkRectangle(), lineCount, Workers(), [this](const auto& point) {
                const auto reach = [&](int gradient) {
                    return static_cast<int>(static_cast<double>(lineLength * gradient) /
                                            point.steepness);
                };
                const int dx = reach(point.gradient_x);
                const int dy = reach(point.gradient_y);
                return THair<decltype(traits)>{
                    {{width, height}, {point.x + dx, point.y + dy}, {point.x - dx, point.y - dy}},
                    point.colour,
                    transparency};
            });
    });
}
