#include "hostlib/graphics/PictureSampling.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

// Where samples come from, and how those beyond the edge are found.
template <class Sample>
class CPicture {
  public:
    CPicture(const CRowIteratorBands& image, bool wrap)
        : image_(image), shown_(ShownBy(image)), wrap_(wrap) {}
    const Sample* At(int x, int y) const {
        return image_.Row<Sample>(Inside(y, image_.GetHeight())) +
               Inside(x, image_.GetWidth()) * shown_.step + shown_.first;
    }
    CSize Size() const { return {image_.GetWidth(), image_.GetHeight()}; }
    int Step() const { return shown_.step; }
    std::ptrdiff_t Stride() const {
        return image_.Stride() / static_cast<std::ptrdiff_t>(sizeof(Sample));
    }

  private:
    int Inside(int at, int size) const {
        return wrap_ ? FloorMod(at, size) : std::clamp(at, 0, size - 1);
    }
    const CRowIteratorBands& image_;
    SShownSamples shown_;
    bool wrap_;
};

// Weights of the pixels around a place that is `t` on the way from the second to the third: linear
// for two; for four the cubic through the samples (Catmull and Rom), as polynomials in t.
inline void Weights(float t, float (&w)[2]) {
    w[0] = 1 - t;
    w[1] = t;
}
constexpr float kCubic[4][4] = {{-0.5F, 1.5F, -1.5F, 0.5F},
                                {1.0F, -2.5F, 2.0F, -0.5F},
                                {-0.5F, 0.0F, 0.5F, 0.0F},
                                {0.0F, 1.0F, 0.0F, 0.0F}};
inline void Weights(float t, float (&w)[4]) {
    for (int k = 0; k < 4; ++k) {
        w[k] = ((kCubic[0][k] * t + kCubic[1][k]) * t + kCubic[2][k]) * t + kCubic[3][k];
    }
}

// What is seen at a place: the weighted mean of kTaps by kTaps pixels, of each column first. Kept
// out of the fast loop, which has registers for nothing else.
template <class Sample, int kColours, int kTaps>
[[gnu::noinline]] void See(const CPicture<Sample>& picture, float at_x, float at_y, float* seen) {
    const float low_x = std::floor(at_x), low_y = std::floor(at_y);
    const int x = static_cast<int>(low_x) - (kTaps / 2 - 1);
    const int y = static_cast<int>(low_y) - (kTaps / 2 - 1);
    float wx[kTaps], wy[kTaps];
    Weights(at_x - low_x, wx);
    Weights(at_y - low_y, wy);
    for (int c = 0; c < kColours; ++c) {
        seen[c] = 0;
        for (int i = 0; i < kTaps; ++i) {
            float column = 0;
            for (int j = 0; j < kTaps; ++j) {
                column += wy[j] * static_cast<float>(picture.At(x + i, y + j)[c]);
            }
            seen[c] += wx[i] * column;
        }
    }
}

template <class Sample, int kColours, int kTaps>
void SeePlain(const CPicture<Sample>& picture, bool nearest, SPlaces& places, int pixels) {
    const auto place = [&](float at) { return nearest ? std::floor(at + 0.5F) : at; };
    for (int i = 0; i < pixels; ++i) {
        See<Sample, kColours, kTaps>(picture, place(places.x[i]), place(places.y[i]),
                                     places.seen + i * kColours);
    }
}

// Four floats for each of two pixels, side by side. All that works on them is inlined.
using Floats = float __attribute__((vector_size(32)));

// 16 bytes of each of two pixels' rows; bytes kAt to kAt + 3 and 16-bit samples kAt to kAt + 3 of
// both as floats. The bytes become numbers by being repeated and masked, in one shuffle.
using Bytes = std::uint8_t __attribute__((vector_size(32)));
using Words = std::uint16_t __attribute__((vector_size(32)));
using Ints = std::int32_t __attribute__((vector_size(32)));
inline Bytes Load(const void* left, const void* right) {
    using Half = std::int64_t __attribute__((vector_size(16)));
    Half halves[2];
    std::memcpy(&halves[0], left, sizeof halves[0]);
    std::memcpy(&halves[1], right, sizeof halves[1]);
    return reinterpret_cast<Bytes>(__builtin_shufflevector(halves[0], halves[1], 0, 1, 2, 3));
}
template <int kAt>
inline Floats BytesAt(Bytes b) {
    constexpr int i = kAt, j = kAt + 16;
    const Bytes repeated =
        __builtin_shufflevector(b, b, i, i, i, i, i + 1, i + 1, i + 1, i + 1, i + 2, i + 2, i + 2,
                                i + 2, i + 3, i + 3, i + 3, i + 3, j, j, j, j, j + 1, j + 1, j + 1,
                                j + 1, j + 2, j + 2, j + 2, j + 2, j + 3, j + 3, j + 3, j + 3);
    return __builtin_convertvector(reinterpret_cast<Ints>(repeated) & 0xFF, Floats);
}
template <int kAt>
inline Floats WordsAt(Bytes b) {
    constexpr int i = kAt, j = kAt + 8;
    const auto w = reinterpret_cast<Words>(b);
    const Words repeated =
        __builtin_shufflevector(w, w, i, i, i + 1, i + 1, i + 2, i + 2, i + 3, i + 3, j, j, j + 1,
                                j + 1, j + 2, j + 2, j + 3, j + 3);
    return __builtin_convertvector(reinterpret_cast<Ints>(repeated) & 0xFFFF, Floats);
}

// Samples 4 * kGroup to 4 * kGroup + 3 from two places on.
template <int kGroup>
inline Floats Group(const std::uint8_t* left, const std::uint8_t* right) {
    return BytesAt<4 * kGroup>(Load(left, right));
}
template <int kGroup>
inline Floats Group(const std::uint16_t* left, const std::uint16_t* right) {
    constexpr int kFirst = kGroup / 2 * 8;
    return WordsAt<4 * kGroup - kFirst>(Load(left + kFirst, right + kFirst));
}
// So many pixels from a place on are read at most, in loads of 16 bytes.
template <class Sample, int kStep>
constexpr int kReach = 4 + 16 / (kStep * static_cast<int>(sizeof(Sample)));

inline Floats Both(float left, float right) {
    return Floats{left, left, left, left, right, right, right, right};
}
inline Floats CubicWeights(Floats t) {
    const auto row = [](int i) {
        const float* k = kCubic[i];
        return Floats{k[0], k[1], k[2], k[3], k[0], k[1], k[2], k[3]};
    };
    return ((row(0) * t + row(1)) * t + row(2)) * t + row(3);
}
template <int kAt>
inline Floats Spread(Floats weights) {
    return __builtin_shufflevector(weights, weights, kAt, kAt, kAt, kAt, 4 + kAt, 4 + kAt, 4 + kAt,
                                   4 + kAt);
}

// The samples of column kColumn (and some that follow them) of two rows of 4 * kStep.
template <int kStep, int kColumn>
inline Floats Column(const Floats (&row)[kStep]) {
    constexpr int kFirst = kColumn * kStep / 4, kAt = kColumn * kStep % 4;
    const auto from = [](int i) { return i < 4 ? i : i + 4; };
    constexpr int k[4] = {from(kAt), from(kAt + 1), from(kAt + 2), from(kAt + 3)};
    return __builtin_shufflevector(row[kFirst], row[std::min(kFirst + 1, kStep - 1)], k[0], k[1],
                                   k[2], k[3], 4 + k[0], 4 + k[1], 4 + k[2], 4 + k[3]);
}

// Splits the places that the pixels look to into the first pixel around them and the way from the
// second on; and whether, from the first on, `reach` pixels can be read.
CMDTEXTURE_MULTIVERSION void Locate(SPlaces* places, int pixels, CSize picture, int reach) {
    for (int i = 0; i < pixels; ++i) {
        const float low_x = std::floor(places->x[i]), low_y = std::floor(places->y[i]);
        places->way_x[i] = places->x[i] - low_x;
        places->way_y[i] = places->y[i] - low_y;
        const int x = static_cast<int>(low_x) - 1, y = static_cast<int>(low_y) - 1;
        places->first_x[i] = x;
        places->first_y[i] = y;
        places->inside[i] = (x >= 0) & (y >= 0) & (x <= picture.cx - reach) & (y <= picture.cy - 4);
    }
}

// See of cubic weights for two places well inside the picture, to the bit: the same sums in the
// same order, of all samples of the columns at once. The first of each four floats are the colours.
template <class Sample, int kStep>
inline Floats SeeInside(const Sample* left, const Sample* right, std::ptrdiff_t stride, Floats wx,
                        Floats wy) {
    Floats sums[kStep] = {};
    const auto add = [&](int j, Floats weight) {
        const Sample *l = left + j * stride, *r = right + j * stride;
        sums[0] += weight * Group<0>(l, r);
        if constexpr (kStep > 1) sums[1] += weight * Group<1>(l, r);
        if constexpr (kStep > 2) sums[2] += weight * Group<2>(l, r);
        if constexpr (kStep > 3) sums[3] += weight * Group<3>(l, r);
    };
    add(0, Spread<0>(wy));
    add(1, Spread<1>(wy));
    add(2, Spread<2>(wy));
    add(3, Spread<3>(wy));
    return Spread<0>(wx) * Column<kStep, 0>(sums) + Spread<1>(wx) * Column<kStep, 1>(sums) +
           Spread<2>(wx) * Column<kStep, 2>(sums) + Spread<3>(wx) * Column<kStep, 3>(sums);
}

// Pairs of places inside the picture fast, the others one by one.
template <class Sample, int kColours, int kStep>
CMDTEXTURE_MULTIVERSION void SeeCubic(const CPicture<Sample>* picture, SPlaces* places,
                                      int pixels) {
    const CPicture<Sample> from = *picture;
    const Sample* origin = from.At(0, 0);
    const std::ptrdiff_t stride = from.Stride();
    const auto corner = [&](int i) {
        return origin + places->first_y[i] * stride + places->first_x[i] * kStep;
    };
    Locate(places, pixels, from.Size(), kReach<Sample, kStep>);
    for (int i = 0; i < pixels; i += 2) {
        const int next = std::min(i + 1, pixels - 1);
        float *seen = places->seen + i * kColours, *seen_next = places->seen + next * kColours;
        if (places->inside[i] & places->inside[next]) {
            const Floats colours =
                SeeInside<Sample, kStep>(corner(i), corner(next), stride,
                                         CubicWeights(Both(places->way_x[i], places->way_x[next])),
                                         CubicWeights(Both(places->way_y[i], places->way_y[next])));
            std::memcpy(seen, &colours, sizeof colours / 2);
            std::memcpy(seen_next, reinterpret_cast<const float*>(&colours) + 4,
                        sizeof colours / 2);
        } else {
            See<Sample, kColours, 4>(from, places->x[i], places->y[i], seen);
            See<Sample, kColours, 4>(from, places->x[next], places->y[next], seen_next);
        }
    }
}

template <class Sample, int kColours>
void SeeDeep(const CPicture<Sample>& picture, int resample, SPlaces& places, int pixels) {
    if (resample != 2) {
        SeePlain<Sample, kColours, 2>(picture, resample == 0, places, pixels);
    } else if (picture.Step() == kColours) {
        SeeCubic<Sample, kColours, kColours>(&picture, &places, pixels);
    } else if (picture.Step() == kColours + 1) {
        SeeCubic<Sample, kColours, kColours + 1>(&picture, &places, pixels);
    } else {
        SeePlain<Sample, kColours, 4>(picture, false, places, pixels);
    }
}

}  // namespace

void CPictureSampler::See(SPlaces& places, int pixels) const {
    VisitDepth(picture_.GetPixelFormat().Is16bit(), [&](auto sample) {
        const CPicture<decltype(sample)> picture(picture_, wrap_);
        if (picture_.GetAccessFormat().ColourChannels() == 1) {
            SeeDeep<decltype(sample), 1>(picture, resample_, places, pixels);
        } else {
            SeeDeep<decltype(sample), 3>(picture, resample_, places, pixels);
        }
    });
}
