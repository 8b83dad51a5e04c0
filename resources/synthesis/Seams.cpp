// Joining pictures along lines that do not show.
#include <algorithm>
#include <array>
#include <limits>

#include "resources/synthesis/Raster.h"

namespace synthesis {
namespace {

// Squared differences of two pictures in a strip, `width` across and `height` down.
struct Strip {
    Strip(int columns, int rows)
        : width(columns),
          height(rows),
          values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}
    float& At(int x, int y) { return values[static_cast<std::size_t>(y * width + x)]; }
    float At(int x, int y) const { return values[static_cast<std::size_t>(y * width + x)]; }

    int width, height;
    std::vector<float> values;
};

float Difference(const float* a, const float* b, int channels) {
    float sum = 0;
    for (int c = 0; c < channels; ++c) sum += (a[c] - b[c]) * (a[c] - b[c]);
    return sum;
}

// A connected line down a strip, one column a row, and what it costs.
struct Line {
    std::vector<int> column;
    float cost = std::numeric_limits<float>::max();
};

// The cheapest line; from and to the column `fixed` where that is not negative.
Line CheapestLine(const Strip& strip, int fixed) {
    constexpr float kBarred = 1e30F;
    Strip cost(strip.width, strip.height);
    for (int x = 0; x < strip.width; ++x) {
        cost.At(x, 0) = fixed < 0 || x == fixed ? strip.At(x, 0) : kBarred;
    }
    for (int y = 1; y < strip.height; ++y) {
        for (int x = 0; x < strip.width; ++x) {
            float before = cost.At(x, y - 1);
            if (x > 0) before = std::min(before, cost.At(x - 1, y - 1));
            if (x + 1 < strip.width) before = std::min(before, cost.At(x + 1, y - 1));
            cost.At(x, y) = before + strip.At(x, y);
        }
    }
    const int last = strip.height - 1;
    int x = fixed;
    if (fixed < 0) {
        x = 0;
        for (int i = 1; i < strip.width; ++i) {
            if (cost.At(i, last) < cost.At(x, last)) x = i;
        }
    }
    Line line{std::vector<int>(static_cast<std::size_t>(strip.height)), cost.At(x, last)};
    for (int y = last; y >= 0; --y) {
        if (y < last) {
            int best = x;
            for (const int next : {x - 1, x + 1}) {
                if (next < 0 || next >= strip.width) continue;
                if (cost.At(next, y) < cost.At(best, y)) best = next;
            }
            x = best;
        }
        line.column[static_cast<std::size_t>(y)] = x;
    }
    return line;
}

// The cheapest of the lines that end where they began, so that they tile; tried from a few places.
Line CheapestLoop(const Strip& strip) {
    Line best;
    const Line open = CheapestLine(strip, -1);
    for (const int start : {open.column.front(), open.column.back(), strip.width / 2}) {
        const Line loop = CheapestLine(strip, start);
        if (loop.cost < best.cost) best = loop;
    }
    return best;
}

// 0 well before the line, 1 well behind it: a seam that is soft over a few pixels.
float Behind(int x, int line) {
    constexpr float kFeather = 2.5F;
    return std::clamp(static_cast<float>(x - line) / (2 * kFeather) + 0.5F, 0.0F, 1.0F);
}

// The picture's left part, as wide as makes its continuation most like its beginning, with the
// beginning laid over that continuation.
Raster JoinSides(const Raster& picture) {
    const int overlap = std::max(4, picture.width / 8);
    const int narrowest = std::max(overlap, picture.width * 3 / 5);
    const int step = std::max(1, picture.height / 256);
    int width = narrowest;
    double least = std::numeric_limits<double>::max();
    for (int candidate = narrowest; candidate + overlap <= picture.width; ++candidate) {
        double sum = 0;
        for (int y = 0; y < picture.height; y += step) {
            for (int x = 0; x < overlap; x += 2) {
                sum += Difference(picture.At(x, y), picture.At(candidate + x, y), picture.channels);
            }
        }
        // Of cuts that are about as good, the one that keeps more.
        sum *= 1.1 - 0.1 * candidate / picture.width;
        if (sum < least) {
            least = sum;
            width = candidate;
        }
    }
    Strip differences(overlap, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < overlap; ++x) {
            differences.At(x, y) =
                Difference(picture.At(x, y), picture.At(width + x, y), picture.channels);
        }
    }
    const Line line = CheapestLoop(differences);
    Raster joined(width, picture.height, picture.channels);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float own = x < overlap ? Behind(x, line.column[static_cast<std::size_t>(y)]) : 1;
            const float* here = picture.At(x, y);
            const float* next = picture.At(x < overlap ? width + x : x, y);
            for (int c = 0; c < picture.channels; ++c) {
                joined.At(x, y)[c] = next[c] + own * (here[c] - next[c]);
            }
        }
    }
    return joined;
}

// A seamless picture that is laid block by block.
class Patchwork {
  public:
    Patchwork(const Raster& picture, int side, int blocks, std::uint32_t seed)
        : step_(side / blocks),
          overlap_(std::max(8, step_ * 3 / 10)),
          block_(step_ + overlap_),
          blocks_(blocks),
          state_(seed),
          laid_(side, side, picture.channels),
          filled_(static_cast<std::size_t>(side) * static_cast<std::size_t>(side)) {
        turned_[0] = picture;
        turned_[1] = Transpose(picture);
        for (std::size_t i = 0; i < 2; ++i) {
            turned_[i + 2] = Mirrored(turned_[i]);
            turned_[i + 4] = Transpose(Mirrored(Transpose(turned_[i])));
            turned_[i + 6] = Mirrored(turned_[i + 4]);
        }
    }

    Raster Make() {
        for (int row = 0; row < blocks_; ++row) {
            for (int column = 0; column < blocks_; ++column) Lay(column, row);
        }
        return std::move(laid_);
    }

  private:
    struct Patch {
        const Raster* from;
        int x, y;
    };

    static Raster Mirrored(const Raster& picture) {
        Raster mirrored = picture;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                std::copy_n(picture.At(x, y), picture.channels,
                            mirrored.At(picture.width - 1 - x, y));
            }
        }
        return mirrored;
    }

    int Random(int below) {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<int>((state_ >> 8) % static_cast<std::uint32_t>(below));
    }

    bool Filled(int x, int y) const { return filled_[laid_.Index(x, y) / Channels()]; }
    std::size_t Channels() const { return static_cast<std::size_t>(laid_.channels); }

    // How badly a patch fits what is laid already; looked at on every second pixel.
    double Misfit(const Patch& patch, int left, int top) const {
        double sum = 0;
        for (int y = 0; y < block_; y += 2) {
            for (int x = 0; x < block_; x += 2) {
                const bool inside = x >= overlap_ && x < step_ && y >= overlap_ && y < step_;
                if (inside || !Filled(left + x, top + y)) continue;
                sum += Difference(laid_.At(left + x, top + y),
                                  patch.from->At(patch.x + x, patch.y + y), laid_.channels);
            }
        }
        return sum;
    }

    void Lay(int column, int row) {
        constexpr int kTries = 160;
        const int left = column * step_;
        const int top = row * step_;
        Patch best{};
        double least = std::numeric_limits<double>::max();
        for (int i = 0; i < kTries; ++i) {
            const Raster& from = turned_[static_cast<std::size_t>(Random(8))];
            const Patch patch{&from, Random(from.width - block_ + 1),
                              Random(from.height - block_ + 1)};
            const double misfit = Misfit(patch, left, top);
            if (misfit < least) {
                least = misfit;
                best = patch;
            }
        }
        Paste(best, left, top);
    }

    // Where the patch shows within its overlap with what is laid on one side: the line along that
    // side, as a distance from it for each place along it.
    std::vector<int> Cut(const Patch& patch, int left, int top, bool beside, bool far) const {
        Strip differences(overlap_, block_);
        for (int along = 0; along < block_; ++along) {
            for (int across = 0; across < overlap_; ++across) {
                const int in = far ? block_ - 1 - across : across;
                const int x = beside ? in : along;
                const int y = beside ? along : in;
                differences.At(across, along) =
                    Difference(laid_.At(left + x, top + y),
                               patch.from->At(patch.x + x, patch.y + y), laid_.channels);
            }
        }
        return CheapestLine(differences, -1).column;
    }

    void Paste(const Patch& patch, int left, int top) {
        const int middle = block_ / 2;
        const bool at_left = Filled(left, top + middle);
        const bool at_right = Filled(left + block_ - 1, top + middle);
        const bool at_top = Filled(left + middle, top);
        const bool at_bottom = Filled(left + middle, top + block_ - 1);
        const auto cut = [&](bool wanted, bool beside, bool far) {
            return wanted ? Cut(patch, left, top, beside, far) : std::vector<int>();
        };
        const std::array lines{cut(at_left, true, false), cut(at_right, true, true),
                               cut(at_top, false, false), cut(at_bottom, false, true)};
        for (int y = 0; y < block_; ++y) {
            for (int x = 0; x < block_; ++x) {
                const std::array depth{x, block_ - 1 - x, y, block_ - 1 - y};
                float share = 1;
                for (std::size_t side = 0; side < lines.size(); ++side) {
                    if (lines[side].empty()) continue;
                    const int along = side < 2 ? y : x;
                    share = std::min(
                        share, Behind(depth[side], lines[side][static_cast<std::size_t>(along)]));
                }
                if (!Filled(left + x, top + y)) share = 1;
                float* to = laid_.At(left + x, top + y);
                const float* from = patch.from->At(patch.x + x, patch.y + y);
                for (int c = 0; c < laid_.channels; ++c) to[c] += share * (from[c] - to[c]);
            }
        }
        for (int y = 0; y < block_; ++y) {
            for (int x = 0; x < block_; ++x)
                filled_[laid_.Index(left + x, top + y) / Channels()] = true;
        }
    }

    const int step_, overlap_, block_, blocks_;
    std::uint32_t state_;
    std::array<Raster, 8> turned_;
    Raster laid_;
    std::vector<bool> filled_;
};

}  // namespace

Raster Seamless(const Raster& picture) {
    return Transpose(JoinSides(Transpose(JoinSides(picture))));
}

Raster Quilt(const Raster& picture, int side, int blocks, std::uint32_t seed) {
    return Patchwork(picture, side, blocks, seed).Make();
}

}  // namespace synthesis
