#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <cmath>
#include <limits>
#include <vector>

#include "PlainGaussianBlur.h"
#include "host/graphics/CIoGaussianBlur.h"
#include "support/Pictures.h"

namespace {

using pictures::CountingSink;
using pictures::Difference;
using pictures::kAllFormats;
using pictures::Make;
using pictures::Noise;
using pictures::Sample;

// The strengths of the effects, those around which the blur changes its method, and beyond.
constexpr double kSigmas[] = {0.2, 0.3, 0.5, 0.8, 1.0, 1.6, 2.3, 2.5, 3.1, 4.0, 8.0, 12.0, 20.0};
constexpr double kInfinity = std::numeric_limits<double>::infinity();

CRowIteratorBands Blurred(const CRowIteratorBands& source, double sigma) {
    CRowIteratorBands result;
    CIoGaussianBlur(sigma, 3)(result, source).ThrowIfFailed();
    return result;
}

// One axis of the exact blur: `values` hold `lines` of `length` samples, `step` apart; ends repeat.
void BlurExactly(std::vector<double>& values, double sigma, int lines, int line_step, int length,
                 int step) {
    const int radius = static_cast<int>(7 * sigma) + 2;
    std::vector<double> weights(static_cast<std::size_t>(radius) + 1);
    double whole = 0;
    for (int r = 0; r <= radius; ++r) {
        weights[static_cast<std::size_t>(r)] = std::exp(-0.5 * r * r / (sigma * sigma));
        whole += (r == 0 ? 1 : 2) * weights[static_cast<std::size_t>(r)];
    }
    std::vector<double> line(static_cast<std::size_t>(length));
    for (int l = 0; l < lines; ++l) {
        double* at = values.data() + static_cast<std::ptrdiff_t>(l) * line_step;
        for (int i = 0; i < length; ++i) {
            double sum = 0;
            for (int r = -radius; r <= radius; ++r) {
                sum += weights[static_cast<std::size_t>(std::abs(r))] *
                       at[static_cast<std::ptrdiff_t>(std::clamp(i + r, 0, length - 1)) * step];
            }
            line[static_cast<std::size_t>(i)] = sum / whole;
        }
        for (int i = 0; i < length; ++i) {
            at[static_cast<std::ptrdiff_t>(i) * step] = line[static_cast<std::size_t>(i)];
        }
    }
}

// By how much the blur of `source` is off the exact value at the worst sample.
double LargestError(const CRowIteratorBands& source, double sigma) {
    const int width = source.GetWidth();
    const int height = source.GetHeight();
    const CRowIteratorBands blurred = Blurred(source, sigma);
    double largest = 0;
    for (int c = 0; c < source.GetPixelFormat().Channels(); ++c) {
        std::vector<double> exact;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) exact.push_back(Sample(source, x, y, c));
        }
        BlurExactly(exact, sigma, height, width, width, 1);
        BlurExactly(exact, sigma, width, 1, height, width);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double value = exact[static_cast<std::size_t>(y * width + x)];
                largest = std::max(largest, std::abs(Sample(blurred, x, y, c) - value));
            }
        }
    }
    return largest;
}

double Tolerance(CNPixelFormat format) { return format.Is16bit() ? 8 : 1; }

TEST(GaussianBlur, IsWithinTheToleranceOfTheExactBlur) {
    for (const ENPixelFormat format : kAllFormats) {
        for (const CSize size : pictures::kAwkwardSizes) {
            const CRowIteratorBands source = pictures::Tight(Noise(format, size.cx, size.cy, 3));
            for (const double sigma : kSigmas) {
                EXPECT_LE(LargestError(source, sigma), Tolerance(format))
                    << pictures::Name(format) << " " << size.cx << " x " << size.cy << " sigma "
                    << sigma;
            }
        }
    }
}

// Full-contrast waves of every length down the columns and along the rows, and hard edges: the
// worst that cutting the kernel off and skipping rows can meet.
TEST(GaussianBlur, WavesAndEdgesOfFullContrastStayWithinTheTolerance) {
    for (const ENPixelFormat format : {ENPixelFormat::Grey8, ENPixelFormat::Grey16}) {
        const double range = CNPixelFormat(format).Is16bit() ? 65535 : 255;
        for (const double sigma : {2.0, 2.5, 3.0, 4.0, 5.7, 8.0, 13.0, 20.0}) {
            double worst = 0;
            for (double period = 2; period < 16 * sigma; period *= 1.12) {
                const auto wave = [&](int at) {
                    return static_cast<int>(
                        std::lround(range * (0.5 + 0.5 * std::cos(at * 2 * M_PI / period))));
                };
                const auto edge = [&](int at) { return wave(at) > range / 2 ? wave(0) : 0; };
                const auto down = [&](auto f) {
                    return Make(format, 2, 300, [&](int, int y, int) { return f(y); });
                };
                const auto along = [&](auto f) {
                    return Make(format, 300, 2, [&](int x, int, int) { return f(x); });
                };
                for (const auto& picture : {down(wave), down(edge), along(wave), along(edge)}) {
                    worst = std::max(worst, LargestError(picture, sigma));
                }
            }
            RecordProperty(pictures::Name(format) + " " + std::to_string(sigma),
                           std::to_string(worst));
            EXPECT_LE(worst, Tolerance(format)) << pictures::Name(format) << " sigma " << sigma;
        }
    }
}

TEST(GaussianBlur, AnEvenPictureStaysAsItIs) {
    for (const ENPixelFormat format : kAllFormats) {
        const int white = CNPixelFormat(format).Is16bit() ? 65535 : 255;
        for (const int value : {0, 1, 2, white / 3, white / 2, white - 1, white}) {
            const auto even = Make(format, 21, 130, [&](int, int, int c) {
                return c % 2 == 0 ? value : white - value;
            });
            for (const double sigma : kSigmas) {
                ASSERT_EQ(Difference(Blurred(even, sigma), even), "") << sigma;
            }
            for (const double sigma : {33.0, 200.0, 1e9, kInfinity}) {
                ASSERT_EQ(Difference(Blurred(even, sigma), even), "") << sigma;
            }
        }
    }
}

TEST(GaussianBlur, ABlurFarLargerThanThePictureIsStillExact) {
    for (const ENPixelFormat format : {ENPixelFormat::Colour8, ENPixelFormat::Colour16}) {
        for (const CSize size : {CSize{1, 1}, {40, 1}, {1, 40}, {9, 70}, {70, 9}}) {
            const CRowIteratorBands source = Noise(format, size.cx, size.cy, 8);
            for (const double sigma : {50.0, 700.0}) {
                EXPECT_LE(LargestError(source, sigma), Tolerance(format))
                    << pictures::Name(format) << " " << size.cx << " x " << size.cy << " sigma "
                    << sigma;
            }
            EXPECT_EQ(Difference(Blurred(source, kInfinity), Blurred(source, 1e300)), "");
        }
    }
}

TEST(GaussianBlur, WithoutAWidthItCopies) {
    for (const ENPixelFormat format : kAllFormats) {
        const CRowIteratorBands source = Noise(format, 17, 9, 4);
        for (const double sigma : {0.0, -3.0, 1e-300, std::nan("")}) {
            EXPECT_EQ(Difference(Blurred(source, sigma), source), "") << sigma;
        }
    }
}

// The row loops are compiled for several processors; the plain ones are the measure of all.
TEST(GaussianBlur, EveryProcessorAndNumberOfThreadsGivesTheSame) {
    for (const ENPixelFormat format : kAllFormats) {
        for (const CSize size : {CSize{23, 150}, {2060, 20}, {5, 33}}) {
            const CRowIteratorBands source = Noise(format, size.cx, size.cy, 6);
            for (const double sigma : kSigmas) {
                const CRowIteratorBands blurred = Blurred(source, sigma);
                const tbb::global_control one(tbb::global_control::max_allowed_parallelism, 1);
                CRowIteratorBands plain;
                CPlainGaussianBlur(sigma, 3)(plain, source).ThrowIfFailed();
                ASSERT_EQ(Difference(blurred, plain), "") << sigma;
            }
        }
    }
}

TEST(GaussianBlur, BlursTheChannelsThatTheSourceShows) {
    for (const ENPixelFormat format : kAllFormats) {
        for (const ENChannel channel : {ENChannel::Colour, ENChannel::Alpha, ENChannel::Grey}) {
            CRowIteratorBands source = pictures::Tight(Noise(format, 41, 90, 5));
            source.SetOrigin({-3, 12});
            if (source.SetChannelAccess(channel, 0).Failed()) continue;
            CRowIteratorBands shown;
            shown.Create(41, 90, source.GetAccessFormat(), {-3, 12}).ThrowIfFailed();
            for (int y = 0; y < 90; ++y) {
                const std::uint8_t* row = nullptr;
                std::as_const(source).GetRow(row, y).ThrowIfFailed();
                std::copy_n(row, 41 * shown.GetPixelFormat().PixelBytes(),
                            shown.Row<std::uint8_t>(y));
                std::as_const(source).ReleaseRow(y);
            }
            for (const double sigma : {0.0, 1.0, 6.0}) {
                const CRowIteratorBands result = Blurred(source, sigma);
                EXPECT_EQ(Difference(result, Blurred(shown, sigma)), "") << sigma;
                EXPECT_EQ(result.GetRect(), source.GetRect());
                EXPECT_EQ(result.GetChannelAccess(), ENChannel::All);
            }
        }
    }
}

TEST(GaussianBlur, TheDestinationKeepsMemoryThatFits) {
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 30, 50, 1);
    for (const double sigma : {0.0, 1.0, 5.0}) {
        const CRowIteratorBands expected = Blurred(source, sigma);
        CRowIteratorBands fits = Noise(ENPixelFormat::Colour8, 30, 50, 2);
        const std::uint8_t* memory = fits.Row<std::uint8_t>(0);
        CRowIteratorBands other = Noise(ENPixelFormat::Grey16, 30, 50, 2);
        CRowIteratorBands itself;
        itself.Copy(source, 0).ThrowIfFailed();
        const CRowIteratorBands second_handle = itself;
        CIoGaussianBlur blur(sigma, 3);
        for (CRowIteratorBands* destination : {&fits, &other}) {
            EXPECT_FALSE(blur(*destination, source).Failed());
            EXPECT_EQ(Difference(*destination, expected), "");
        }
        EXPECT_EQ(fits.Row<std::uint8_t>(0), memory);
        EXPECT_FALSE(blur(itself, second_handle).Failed());
        EXPECT_EQ(Difference(itself, expected), "") << "onto the source's own pixels";
        CRowIteratorBands view;  // another store over the same memory
        view.Attach(fits.Row<std::uint8_t>(0), fits.Stride(), 30, 50, ENPixelFormat::Colour8)
            .ThrowIfFailed();
        fits.Copy(source, 0).ThrowIfFailed();
        EXPECT_FALSE(blur(view, fits).Failed());
        EXPECT_EQ(Difference(view, expected), "") << "onto the source's memory";
    }
    CRowIteratorBands destination;
    EXPECT_EQ(CIoGaussianBlur(1, 3)(destination, CRowIteratorBands()).Code(),
              TolmErrorCode::UnusableInput);
}

TEST(GaussianBlur, ReportsProgressAndStopsWhenCancelled) {
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 20, 900, 1);
    for (const double sigma : {0.0, 1.0, 5.0}) {
        const auto run = [&](CountingSink& sink) {
            CStatusControl status(&sink);
            CIoGaussianBlur blur(sigma, 3);
            blur.SetStatusControl(&status);
            CRowIteratorBands destination;
            return blur(destination, source).Code();
        };
        CountingSink all;
        EXPECT_EQ(run(all), TolmErrorCode::Success);
        EXPECT_DOUBLE_EQ(all.Last(), 1.0);
        EXPECT_FALSE(all.EverFell());
        for (const int call : {1, 2, 5}) {
            CountingSink cancelling(call);
            EXPECT_EQ(run(cancelling), TolmErrorCode::Cancelled) << sigma << " call " << call;
            EXPECT_EQ(cancelling.Calls(), call) << "stops at once";
        }
    }
}

}  // namespace
