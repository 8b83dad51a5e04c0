#include <array>
#include <cmath>

#include "recipes.h"

namespace generator {
namespace {

// Mean over 2 * radius + 1 samples along x; beyond the borders the map is mirrored.
HeightMap BlurAcross(const HeightMap& map, int radius) {
    HeightMap blurred;
    for (int y = 0; y < kSize; ++y) {
        const auto at = [&](int x) {
            return map.At(x < 0 ? -1 - x : std::min(x, 2 * kSize - 1 - x), y);
        };
        double sum = 0;
        for (int x = -radius; x < radius; ++x) sum += at(x);
        for (int x = 0; x < kSize; ++x) {
            sum += at(x + radius);
            blurred.At(x, y) = sum / (2 * radius + 1);
            sum -= at(x - radius);
        }
    }
    return blurred;
}

HeightMap Transpose(const HeightMap& map) {
    HeightMap turned;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) turned.At(y, x) = map.At(x, y);
    }
    return turned;
}

// Takes away differences of brightness wider than about 100 pixels: they are light, not height.
HeightMap EvenOut(HeightMap map) {
    HeightMap light = map;
    for (int pass = 0; pass < 4; ++pass) light = Transpose(BlurAcross(light, 48));
    for (std::size_t i = 0; i < map.values.size(); ++i) map.values[i] -= light.values[i];
    return map;
}

HeightMap MoveLeft(const HeightMap& map, int columns) {
    HeightMap moved;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) moved.At(x, y) = map.At(x + columns, y);
    }
    return moved;
}

// A connected line down the map: a column for each row, and how much two maps differ along it.
struct Line {
    std::array<int, kSize> column;
    double difference;
};

// The line of the least difference from `start` in the top row to the same column of the bottom
// row, so that it tiles too, within first <= column < last.
Line QuietLineFrom(int start, const HeightMap& differences, int first, int last) {
    constexpr double kBarred = 1e18;
    HeightMap cost;  // of the best line from the start to a pixel
    for (int x = first - 1; x <= last; ++x) cost.At(x, 0) = x == start ? 0 : kBarred;
    for (int y = 1; y < kSize; ++y) {
        cost.At(first - 1, y) = cost.At(last, y) = kBarred;
        for (int x = first; x < last; ++x) {
            const double before =
                std::min({cost.At(x - 1, y - 1), cost.At(x, y - 1), cost.At(x + 1, y - 1)});
            cost.At(x, y) = before + differences.At(x, y);
        }
    }
    Line line{{}, cost.At(start, kSize - 1)};
    int x = start;
    for (int y = kSize - 1; y >= 0; --y) {
        int best = x;
        for (int next : {x - 1, x + 1}) {
            if (y < kSize - 1 && cost.At(next, y) < cost.At(best, y)) best = next;
        }
        line.column[static_cast<std::size_t>(y)] = x = best;
    }
    return line;
}

Line QuietestLine(const HeightMap& a, const HeightMap& b, int first, int last) {
    HeightMap differences;
    for (std::size_t i = 0; i < a.values.size(); ++i) {
        const double d = a.values[i] - b.values[i];
        differences.values[i] = d * d;
    }
    Line best = QuietLineFrom(first, differences, first, last);
    for (int start = first + 2; start < last; start += 2) {
        const Line line = QuietLineFrom(start, differences, first, last);
        if (line.difference < best.difference) best = line;
    }
    return best;
}

// Moves the left and right borders to the middle and covers them there with a strip of the map,
// cut out along the two quietest lines within `reach` columns of the middle. The strip is the one
// that fits best of those that start up to `farthest` columns beside the map's own middle.
HeightMap JoinSides(const HeightMap& map, int reach, int farthest) {
    constexpr int kMiddle = kSize / 2;
    constexpr double kFeather = 4;
    const HeightMap moved = MoveLeft(map, kMiddle);
    HeightMap strip;
    Line left{{}, 1e18};
    Line right{{}, 1e18};
    for (int offset = -farthest; offset <= farthest; offset += 8) {
        const HeightMap other = MoveLeft(map, offset);
        const Line l = QuietestLine(other, moved, kMiddle - reach, kMiddle - 3);
        const Line r = QuietestLine(other, moved, kMiddle + 3, kMiddle + reach);
        if (l.difference + r.difference < left.difference + right.difference) {
            left = l;
            right = r;
            strip = other;
        }
    }
    HeightMap joined = moved;
    for (int y = 0; y < kSize; ++y) {
        const auto row = static_cast<std::size_t>(y);
        for (int x = kMiddle - reach - 4; x < kMiddle + reach + 4; ++x) {
            const double inside = SmoothStep(-kFeather, kFeather, x - left.column[row]) *
                                  SmoothStep(kFeather, -kFeather, x - right.column[row]);
            joined.At(x, y) = Mix(moved.At(x, y), strip.At(x, y), inside);
        }
    }
    return joined;
}

HeightMap JoinBorders(const HeightMap& map, int reach, int farthest) {
    return Transpose(JoinSides(Transpose(JoinSides(map, reach, farthest)), reach, farthest));
}

double Bilinear(const HeightMap& map, double x, double y) {
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double s = x - column;
    return Mix(Mix(map.At(column, row), map.At(column + 1, row), s),
               Mix(map.At(column, row + 1), map.At(column + 1, row + 1), s), y - row);
}

// The wall seen from straight in front, its courses lying and its joints deep. The photograph
// looks along the courses: twelve of them lie between two joints that lead away from the viewer.
HeightMap Straighten(const HeightMap& photo) {
    constexpr double kTopLeft = 70, kTopRight = 426;       // the two joints at the photo's top
    constexpr double kBottomLeft = 9, kBottomRight = 511;  // and at its bottom
    constexpr double kTopRow = 44;                         // four bricks up from the bottom
    const auto left = [](double y) { return Mix(kTopLeft, kBottomLeft, y / kSize); };
    const auto width = [left](double y) {
        return Mix(kTopRight, kBottomRight, y / kSize) - left(y);
    };
    HeightMap wall;
    for (int x = 0; x < kSize; ++x) {
        // The distance from the viewer grows evenly along a course, and with it 1 / width.
        const double w = 1 / Mix(1 / width(kTopRow), 1 / width(kSize - 2), (x + 0.5) / kSize);
        const double row = kSize * (w - width(0)) / (width(kSize) - width(0));
        for (int y = 0; y < kSize; ++y) {
            wall.At(x, y) = -Bilinear(photo, left(row) + w * (y + 0.5) / kSize, row);
        }
    }
    return wall;
}

}  // namespace

HeightMap SeamlessPhoto(const HeightMap& photo) { return JoinBorders(EvenOut(photo), 32, 96); }

HeightMap BrickWall(const HeightMap& photo) {
    const HeightMap courses = JoinSides(EvenOut(Straighten(photo)), 56, 0);
    return Transpose(JoinSides(Transpose(courses), 9, 0));  // within the joint of two courses
}

}  // namespace generator
