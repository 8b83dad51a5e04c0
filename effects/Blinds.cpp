#include "effects/Blinds.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <vector>

#include "host/core/Multiversion.h"
#include "host/graphics/IRowWorkers.h"

namespace {

constexpr int kBlockRows = 16;  // rows that a thread takes on at a time

// The part of the blending that one run has in common. Strength and rest are the slats' and the
// source's shares in the result and add up to the largest sample value.
struct SBlend {
    float strength;
    float rest;
    float span;  // the sum of the two weights of a pixel
};

// The arithmetic of one sample. `source_weight` runs from 0 at the shaded edge of a slat to
// blend.span at the lit one; `colour_term` is the colour (0 to 1) times what is left of the span.
// Beyond the canvas edges weights leave that range, and results are cut off at black and white.
template <class Sample>
inline Sample ShadeSample(Sample sample, float source_weight, float colour_term, SBlend blend) {
    constexpr float kMaximum = sizeof(Sample) == 2 ? 65535.0F : 255.0F;
    constexpr double kScale = sizeof(Sample) == 2 ? 65535.9999 : 255.9999;
    const float s = static_cast<float>(sample) / kMaximum;
    const float slat = (source_weight * s + colour_term) * blend.strength / blend.span;
    const float shaded = (slat + blend.rest * s) / kMaximum;
    const float fraction = shaded < 0.0F ? 0.0F : shaded > 1.0F ? 1.0F : shaded;
    return static_cast<Sample>(static_cast<int>(static_cast<double>(fraction) * kScale));
}

// Where slats lie and how they look. Positions count pixels across the slats, from 0 at the
// canvas's left edge or from the bottom.
struct SSlats {
    std::int64_t period;
    std::int64_t span;              // period - 1
    bool colour_grows;              // with the position inside a slat
    std::array<float, 3> colour{};  // 0 to 1, in the order of a pixel's samples
    SBlend blend;

    struct SWeights {
        float source;
        float colour;
    };
    // In 64 bits: left of the canvas phases are negative and weights reach twice the span.
    SWeights At(std::int64_t position) const {
        const std::int64_t phase = position % period;
        const std::int64_t weight = colour_grows ? phase : span - phase;
        return {static_cast<float>(span - weight), static_cast<float>(weight)};
    }
};

template <class Traits>
SSlats MakeSlats(int width, int opacity, bool horizontal, bool light_from_left_top,
                 CColorRef color) {
    constexpr bool kIsColour = Traits::kColourChannels == 3;
    const std::int64_t period = std::max(width, 2);
    const std::int64_t strength = std::int64_t{opacity} * Traits::kMaximum / 100;
    const auto normalised = [](int component) { return static_cast<float>(component / 255.0); };
    SSlats slats{
        .period = period,
        .span = period - 1,
        .colour_grows = horizontal && kIsColour ? !light_from_left_top : light_from_left_top,
        .blend = {.strength = static_cast<float>(strength),
                  .rest = static_cast<float>(Traits::kMaximum - strength),
                  .span = static_cast<float>(period - 1)}};
    if (kIsColour) {
        slats.colour = {normalised(color.Blue()), normalised(color.Green()),
                        normalised(color.Red())};
    } else {
        slats.colour[0] = normalised(color.Grey());
    }
    return slats;
}

// Shades `count` samples, whole pixels, each by its own weights.
template <class Traits>
CMDTEXTURE_MULTIVERSION void ShadeSamples(typename Traits::Sample* __restrict row, int count,
                                          const float* __restrict source_weights,
                                          const float* __restrict colour_terms, SBlend blend) {
    for (int i = 0; i < count; ++i) {
        const auto shaded = ShadeSample(row[i], source_weights[i], colour_terms[i], blend);
        const bool is_alpha = Traits::kHasAlpha && i % Traits::kChannels == Traits::kChannels - 1;
        row[i] = is_alpha ? row[i] : shaded;
    }
}

// What every 8-bit sample becomes under one pair of weights.
CMDTEXTURE_MULTIVERSION void FillTable(std::uint8_t* table, float source_weight, float colour_term,
                                       SBlend blend) {
    for (int s = 0; s < 256; ++s) {
        table[s] = ShadeSample(static_cast<std::uint8_t>(s), source_weight, colour_term, blend);
    }
}

// Shades rows sample by sample. Under horizontal slats the weights of a row are all the same: a
// short stretch of them is filled in for every row and used along it.
template <class Traits>
class TArithmeticShader {
  public:
    using Sample = typename Traits::Sample;

    TArithmeticShader(const SSlats& slats, bool horizontal, int left, int width)
        : slats_(slats), horizontal_(horizontal), width_(width) {
        constexpr int kStretch = 256;
        const int columns = horizontal ? std::min(width, kStretch) : width;
        const auto samples = static_cast<std::size_t>(columns) * Traits::kChannels;
        source_weights_.resize(samples);
        colour_terms_.resize(samples);
        if (!horizontal) FillWeights([&](int column) { return std::int64_t{left} + column; });
    }

    void ShadeRow(Sample* row, std::int64_t position) {
        if (horizontal_) FillWeights([&](int) { return position; });
        const auto stretch = static_cast<int>(source_weights_.size()) / Traits::kChannels;
        for (int x = 0; x < width_; x += stretch) {
            ShadeSamples<Traits>(row + std::ptrdiff_t{x} * Traits::kChannels,
                                 std::min(stretch, width_ - x) * Traits::kChannels,
                                 source_weights_.data(), colour_terms_.data(), slats_.blend);
        }
    }

  private:
    template <class PositionOf>
    void FillWeights(PositionOf&& position_of) {
        std::size_t at = 0;
        for (int column = 0; at < source_weights_.size(); ++column) {
            const SSlats::SWeights weights = slats_.At(position_of(column));
            for (std::size_t c = 0; c < Traits::kChannels; ++c, ++at) {
                source_weights_[at] = weights.source;
                colour_terms_[at] = c < 3 ? weights.colour * slats_.colour[c] : 0.0F;
            }
        }
    }

    SSlats slats_;
    bool horizontal_;
    int width_;
    std::vector<float> source_weights_;  // of every sample of a row or stretch
    std::vector<float> colour_terms_;
};

// Shades 8-bit rows by looking samples up: a table for every channel and phase, made beforehand
// under vertical slats and for every row under horizontal ones.
template <class Traits>
class TTableShader {
  public:
    TTableShader(const SSlats& slats, bool horizontal, int left, int width)
        : slats_(slats),
          horizontal_(horizontal),
          table_of_column_(static_cast<std::size_t>(width)) {
        const std::int64_t lowest = LowestPhase(slats, left);
        tables_.resize(static_cast<std::size_t>(PhasesAtOnce(slats, horizontal, left)) * kPhase);
        if (horizontal) return;
        std::uint8_t* tables = tables_.data();
        for (std::int64_t phase = lowest; phase < slats.period; ++phase, tables += kPhase) {
            FillTables(tables, phase);
        }
        std::int64_t column = left;
        for (std::uint32_t& table : table_of_column_) {
            table = static_cast<std::uint32_t>(column++ % slats.period - lowest) * kPhase;
        }
    }

    // Tables pay off while they stay in the nearest cache and hold fewer entries than the image
    // has pixels.
    static bool Pays(const SSlats& slats, bool horizontal, int left, int width, int height) {
        constexpr std::int64_t kCacheBytes = 48 << 10;
        const std::int64_t phases = PhasesAtOnce(slats, horizontal, left);
        const std::int64_t made = horizontal ? height : phases;
        return phases * kPhase <= kCacheBytes && made * 256 <= std::int64_t{width} * height;
    }

    void ShadeRow(std::uint8_t* __restrict row, std::int64_t position) {
        if (horizontal_) FillTables(tables_.data(), position);
        const std::uint8_t* __restrict tables = tables_.data();
        for (const std::uint32_t table : table_of_column_) {
            for (int c = 0; c < Traits::kColourChannels; ++c) {
                row[c] = tables[table + row[c] + static_cast<std::uint32_t>(c) * 256];
            }
            row += Traits::kChannels;
        }
    }

  private:
    static constexpr std::uint32_t kPhase = 256 * Traits::kColourChannels;

    static std::int64_t LowestPhase(const SSlats& slats, int left) {
        return left < 0 ? -slats.span : 0;
    }
    static std::int64_t PhasesAtOnce(const SSlats& slats, bool horizontal, int left) {
        return horizontal ? 1 : slats.period - LowestPhase(slats, left);
    }
    void FillTables(std::uint8_t* tables, std::int64_t position) const {
        const SSlats::SWeights weights = slats_.At(position);
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            FillTable(tables + c * 256, weights.source,
                      weights.colour * slats_.colour[static_cast<std::size_t>(c)], slats_.blend);
        }
    }

    SSlats slats_;
    bool horizontal_;
    std::vector<std::uint8_t> tables_;
    std::vector<std::uint32_t> table_of_column_;  // where the tables of a column's phase begin
};

// Copies the source row by row into the image, which has its shape, and shades the rows.
template <class Sample, class Shader>
CErrorAutoThrow ShadeRows(CStatusControl& progress, const CRowIteratorBands& source,
                          CRowIteratorBands& image, int canvas_height, const Shader& shader) {
    const int height = image.GetHeight();
    const std::int64_t position = std::int64_t{canvas_height} - image.GetRect().bottom + height;
    IRowWorkers* const workers = progress.Workers();
    const int slots = workers ? workers->Threads() : 1;
    std::vector<Shader> shaders(static_cast<std::size_t>(slots), shader);
    CErrorAutoThrow result = ForEachRow(
        workers, height, kBlockRows, [&](int y) { return progress.SetProgress(y); },
        [&](int first, int last, int slot) {
            for (int y = first; y < last; ++y) {
                image.CopyRow(source, y);
                shaders[static_cast<std::size_t>(slot)].ShadeRow(image.Row<Sample>(y),
                                                                 position - y);
            }
        });
    if (result.Failed()) image.Destroy();
    return result;
}

}  // namespace

CErrorAutoThrow ApplyBlinds(CStatusControl* status, const CRowIteratorBands& source,
                            CRowIteratorBands& destination, int width, int opacity, bool horizontal,
                            bool lightFromLeftTop, COLORREF color, int canvasHeight) {
    CStatusControl progress(status);
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    CErrorAutoThrow matched = destination.Match(source);
    if (matched.Failed()) return matched;
    progress.SetProgressRange(source.GetHeight());

    const int left = source.GetRect().left;
    const int columns = source.GetWidth();
    const auto shade = [&](auto traits) -> CErrorAutoThrow {
        using Traits = decltype(traits);
        using Sample = typename Traits::Sample;
        const auto slats = MakeSlats<Traits>(width, opacity, horizontal, lightFromLeftTop, {color});
        if constexpr (!Traits::kIs16bit) {
            using Tables = TTableShader<Traits>;
            if (Tables::Pays(slats, horizontal, left, columns, source.GetHeight())) {
                return ShadeRows<Sample>(progress, source, destination, canvasHeight,
                                         Tables(slats, horizontal, left, columns));
            }
        }
        return ShadeRows<Sample>(progress, source, destination, canvasHeight,
                                 TArithmeticShader<Traits>(slats, horizontal, left, columns));
    };
    return CatchErrors([&] {
        return VisitPixelFormat<CErrorAutoThrow>(source.GetPixelFormat(),
                                                 TolmErrorCode::UnusableInput, shade);
    });
}
