#include "effects/Weave.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "host/core/Multiversion.h"
#include "host/graphics/IRowWorkers.h"
#include "host/graphics/PixelMath.h"

namespace {

constexpr int kBlockRows = 16;  // rows that a thread takes on at a time

// The four bands into which a period of the pattern is cut, along either axis.
enum class EBand { GapA, Thread1, GapB, Thread2 };

// The geometry of the weave and the shading of its threads. In 64 bits: widths may be anything
// from 0 to the largest int.
class CThreads {
  public:
    CThreads(int weave_width, int gap_width, int opacity)
        : gap_(gap_width),
          pitch_(std::int64_t{weave_width} + gap_width),
          half_((std::int64_t{weave_width} + 2 * std::int64_t{gap_width}) / 2),
          ends_((100 - std::clamp(opacity, 0, 100)) * 255 / 100) {}

    // The place of a canvas position in the pattern, 0 to twice the pitch; never negative, so that
    // the pattern goes on to the left of the canvas and below it.
    std::int64_t Phase(std::int64_t position) const {
        const std::int64_t period = 2 * pitch_;
        const std::int64_t rest = position % period;
        return rest < 0 ? rest + period : rest;
    }
    EBand BandOf(std::int64_t phase) const {
        if (phase < pitch_) return phase < gap_ ? EBand::GapA : EBand::Thread1;
        return phase - pitch_ < gap_ ? EBand::GapB : EBand::Thread2;
    }

    // How much of the image a thread shows `offset` pixels from the middle of the stretch where it
    // lies on top: 255 in the middle, falling like a circle to what the opacity leaves at the ends.
    // A stretch too short to have ends (one-pixel threads without gaps) is all middle.
    std::uint8_t Profile(std::int64_t offset) const {
        const int radius = 255 - ends_;
        const auto e = half_ > 0 ? static_cast<int>(offset * radius / half_) : 0;
        const double height = std::sqrt(static_cast<double>(radius * radius - e * e));
        return static_cast<std::uint8_t>(static_cast<int>(height + ends_));
    }

    // The profile of the thread on top at phase `u` along it: of thread 1, whose stretch begins
    // with the period, and of thread 2, whose stretch begins a pitch later and ends in gap A.
    std::uint8_t AlongThread1(std::int64_t u) const { return Profile(u - half_); }
    std::uint8_t AlongThread2(std::int64_t u) const {
        return Profile(u < gap_ ? u - gap_ + half_ : u - pitch_ - half_);
    }

    // The profiles that a row at phase `q` gives to the vertical threads on top in it: in gap rows
    // threads 1 and 2, in the row of a horizontal thread the one that it passes under.
    std::array<std::uint8_t, 2> AcrossRow(std::int64_t q) const {
        switch (BandOf(q)) {
            case EBand::GapA:
                return {Profile(q - gap_ + half_), Profile(half_ - q)};
            case EBand::Thread1:
                return {0, Profile(half_ - q)};
            case EBand::GapB:
                return {Profile(half_ - (q - pitch_)), Profile(q - half_)};
            case EBand::Thread2:
                break;
        }
        return {Profile(half_ - (q - pitch_)), 0};
    }

  private:
    std::int64_t gap_;
    std::int64_t pitch_;  // from one thread to the next; a period holds two
    std::int64_t half_;   // half the stretch on which a thread lies on top
    int ends_;            // the profile at its ends
};

// The colours of a pixel's samples, by their place in the pixel. A pixel has `count` samples, of
// which the first `written` are woven.
struct SPixelColours {
    int count;
    int written;
    std::array<std::uint8_t, 3> weave{};
    std::array<std::uint8_t, 3> gap{};
};

std::array<std::uint8_t, 3> SamplesOf(CColorRef colour, bool is_grey) {
    const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
    if (is_grey) return {byte(colour.Grey())};
    return {byte(colour.Blue()), byte(colour.Green()), byte(colour.Red())};
}

// One kind of row, sample by sample: out = (s * p + colour * (255 - p)) / 255, where p is `fixed`
// unless the sample belongs to a vertical thread, whose profile changes from row to row. Samples to
// be kept have p 255.
struct SRowPattern {
    std::vector<std::uint8_t> fixed;
    std::vector<std::uint8_t> under1;  // 255 where vertical thread 1 decides, else 0
    std::vector<std::uint8_t> under2;
    std::vector<std::uint8_t> colour;
};

CMDTEXTURE_MULTIVERSION void WeaveSamples(std::uint8_t* __restrict row, std::size_t count,
                                          const std::uint8_t* __restrict fixed,
                                          const std::uint8_t* __restrict under1,
                                          const std::uint8_t* __restrict under2,
                                          const std::uint8_t* __restrict colour,
                                          std::uint8_t profile1, std::uint8_t profile2) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto p =
            static_cast<std::uint8_t>(fixed[i] | (under1[i] & profile1) | (under2[i] & profile2));
        const auto left = static_cast<std::uint8_t>(255 - p);
        row[i] = static_cast<std::uint8_t>(
            pixel::DivideBy255(static_cast<std::uint16_t>(row[i] * p + colour[i] * left)));
    }
}

// The three kinds of rows of one image.
class CRowPatterns {
  public:
    CRowPatterns(const CThreads& threads, const SPixelColours& colours, bool fill_gaps, int left,
                 int width)
        : threads_(threads), colours_(colours), fill_gaps_(fill_gaps) {
        for (SRowPattern* pattern : {&gap_rows_, &thread1_rows_, &thread2_rows_}) {
            const auto samples =
                static_cast<std::size_t>(width) * static_cast<std::size_t>(colours.count);
            pattern->fixed.assign(samples, 255);
            for (auto* part : {&pattern->under1, &pattern->under2, &pattern->colour}) {
                part->assign(samples, 0);
            }
        }
        for (int x = 0; x < width; ++x) {
            SetColumn(static_cast<std::size_t>(x) * static_cast<std::size_t>(colours.count),
                      threads.Phase(std::int64_t{left} + x));
        }
    }

    // Weaves a row that lies `height` pixels above the canvas's bottom row.
    void WeaveRow(std::uint8_t* row, std::int64_t height) const {
        const std::int64_t q = threads_.Phase(height);
        const EBand band = threads_.BandOf(q);
        const SRowPattern& pattern = band == EBand::Thread1   ? thread1_rows_
                                     : band == EBand::Thread2 ? thread2_rows_
                                                              : gap_rows_;
        const auto [profile1, profile2] = threads_.AcrossRow(q);
        WeaveSamples(row, pattern.fixed.size(), pattern.fixed.data(), pattern.under1.data(),
                     pattern.under2.data(), pattern.colour.data(), profile1, profile2);
    }

  private:
    // Writes the pixel at sample `at`, which lies at phase `u` along the rows, into all patterns.
    void SetColumn(std::size_t at, std::int64_t u) {
        const EBand band = threads_.BandOf(u);
        const auto vertical = [&](SRowPattern& pattern, std::vector<std::uint8_t>& under) {
            SetPixel(pattern.colour, at, colours_.weave);
            SetPixel(pattern.fixed, at, {0, 0, 0});
            SetPixel(under, at, {255, 255, 255});
        };
        const auto horizontal = [&](SRowPattern& pattern, std::uint8_t profile) {
            SetPixel(pattern.colour, at, colours_.weave);
            SetPixel(pattern.fixed, at, {profile, profile, profile});
        };

        if (band == EBand::Thread1) {
            vertical(gap_rows_, gap_rows_.under1);
        } else if (band == EBand::Thread2) {
            vertical(gap_rows_, gap_rows_.under2);
        } else if (fill_gaps_) {
            SetPixel(gap_rows_.colour, at, colours_.gap);
            SetPixel(gap_rows_.fixed, at, {0, 0, 0});
        }
        if (band == EBand::Thread2) {
            vertical(thread1_rows_, thread1_rows_.under2);
        } else {
            horizontal(thread1_rows_, threads_.AlongThread1(u));
        }
        if (band == EBand::Thread1) {
            vertical(thread2_rows_, thread2_rows_.under1);
        } else {
            horizontal(thread2_rows_, threads_.AlongThread2(u));
        }
    }
    void SetPixel(std::vector<std::uint8_t>& samples, std::size_t at,
                  const std::array<std::uint8_t, 3>& values) const {
        for (int c = 0; c < colours_.written; ++c) {
            samples[at + static_cast<std::size_t>(c)] = values[static_cast<std::size_t>(c)];
        }
    }

    CThreads threads_;
    SPixelColours colours_;
    bool fill_gaps_;
    SRowPattern gap_rows_;
    SRowPattern thread1_rows_;
    SRowPattern thread2_rows_;
};

SPixelColours ColoursFor(CNPixelFormat format, CColorRef weave, CColorRef gap) {
    const bool is_colour =
        format == ENPixelFormat::Colour8 || format == ENPixelFormat::ColourAlpha8;
    const bool has_layout = is_colour || format == ENPixelFormat::GreyAlpha8;
    return {.count = has_layout ? format.Channels() : 1,
            .written = is_colour ? 3 : 1,
            .weave = SamplesOf(weave, !is_colour),
            .gap = SamplesOf(gap, !is_colour)};
}

void SetAccess(CRowIteratorBands& image, ENChannel channel) {
    image.SetChannelAccess(channel, image.GetImageModifyMode()).Ignore();
}

}  // namespace

CErrorAutoThrow ApplyWeave(CStatusControl* status, CRowIteratorBands& source,
                           CRowIteratorBands& destination, int weaveWidth, int gapWidth,
                           int opacity, COLORREF weaveColor, COLORREF gapColor, bool fillGaps,
                           int canvasHeight) {
    CStatusControl progress(status);
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    if (weaveWidth < 0 || gapWidth < 0 || (weaveWidth == 0 && gapWidth == 0)) {
        return {TolmErrorCode::UnusableInput, "WeaveWidth is " + std::to_string(weaveWidth) +
                                                  " and GapWidth " + std::to_string(gapWidth) +
                                                  "; one of them must be at least 1"};
    }
    CErrorAutoThrow matched = destination.Match(source);
    if (matched.Failed()) return matched;
    const int height = source.GetHeight();
    progress.SetProgressRange(height);

    return CatchErrors([&]() -> CErrorAutoThrow {
        const CNPixelFormat format = source.GetPixelFormat();
        const CRowPatterns patterns(CThreads(weaveWidth, gapWidth, opacity),
                                    ColoursFor(format, {weaveColor}, {gapColor}), fillGaps,
                                    source.GetRect().left, source.GetWidth());
        if (format.IsAlphaChannelPresent() && !format.Is16bit()) {
            const bool is_grey = format.ColourChannels() == 1;
            SetAccess(source, is_grey ? ENChannel::Grey : ENChannel::Colour);
            SetAccess(destination, is_grey ? ENChannel::Grey : ENChannel::Colour);
        }
        const std::int64_t bottom = std::int64_t{canvasHeight} - source.GetRect().bottom;
        // The pattern keeps alpha by itself, so rows need not be gathered and scattered.
        CErrorAutoThrow result = ForEachRow(
            progress.Workers(), height, kBlockRows, [&](int k) { return progress.SetProgress(k); },
            [&](int first, int last, int /*slot*/) {
                for (int k = first; k < last; ++k) {
                    const int y = height - 1 - k;
                    destination.CopyRow(source, y);
                    patterns.WeaveRow(destination.Row<std::uint8_t>(y), bottom + k);
                }
            });
        if (result.Failed()) {
            destination.Destroy();
            SetAccess(source, ENChannel::All);
            return result;
        }
        SetAccess(source, ENChannel::All);
        SetAccess(destination, ENChannel::All);
        return {};
    });
}
