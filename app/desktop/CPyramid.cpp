#include "app/desktop/CPyramid.h"

#include <QImage>
#include <algorithm>
#include <atomic>

#include "host/graphics/PixelMath.h"
#include "hostlib/graphics/ParallelRows.h"

namespace {

// Smaller levels help nobody.
constexpr int kSmallestSide = 64;
constexpr int kBlockRows = 32;  // that one thread halves

// One pixel of a halved row from two pixels of two rows each; `to_next` is 0 at a right edge.
template <class Traits>
void HalvePixel(const typename Traits::Sample* upper, const typename Traits::Sample* lower,
                int to_next, typename Traits::Sample* out) {
    using Sample = typename Traits::Sample;
    const Sample* four[] = {upper, upper + to_next, lower, lower + to_next};
    if constexpr (Traits::kHasAlpha) {
        constexpr int kAlpha = Traits::kColourChannels;
        std::uint32_t alpha = 0;
        for (const Sample* p : four) alpha += p[kAlpha];
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            std::uint64_t sum = 0;
            for (const Sample* p : four) sum += std::uint64_t{p[c]} * (alpha ? p[kAlpha] : 1U);
            const std::uint64_t weight = alpha ? alpha : 4U;
            out[c] = static_cast<Sample>((sum + weight / 2) / weight);
        }
        out[kAlpha] = static_cast<Sample>((alpha + 2) / 4);
    } else {
        for (int c = 0; c < Traits::kChannels; ++c) {
            std::uint32_t sum = 2;
            for (const Sample* p : four) sum += p[c];
            out[c] = static_cast<Sample>(sum / 4);
        }
    }
}

template <class Traits>
void HalveRow(const CRowIteratorBands& from, int y, CRowIteratorBands& to) {
    using Sample = typename Traits::Sample;
    constexpr int kChannels = Traits::kChannels;
    const Sample* upper = from.Row<Sample>(2 * y);
    const Sample* lower = from.Row<Sample>(std::min(2 * y + 1, from.GetHeight() - 1));
    Sample* out = to.Row<Sample>(y);
    const int pairs = from.GetWidth() / 2;
    for (int x = 0; x < pairs; ++x) {
        HalvePixel<Traits>(upper + x * 2 * kChannels, lower + x * 2 * kChannels, kChannels,
                           out + x * kChannels);
    }
    if (from.GetWidth() % 2 == 0) return;
    HalvePixel<Traits>(upper + pairs * 2 * kChannels, lower + pairs * 2 * kChannels, 0,
                       out + pairs * kChannels);
}

// Unattached when it was stopped.
CRowIteratorBands Halve(const CRowIteratorBands& from, const std::function<bool()>& stop) {
    CRowIteratorBands to;
    const CRect place = from.GetRect();
    to.Create((from.GetWidth() + 1) / 2, (from.GetHeight() + 1) / 2, from.GetPixelFormat(),
              {place.left / 2, place.top / 2})
        .ThrowIfFailed();
    return VisitPixelFormat(from.GetPixelFormat(), CRowIteratorBands(), [&](auto traits) {
        std::atomic<bool> stopped = false;
        HostRowWorkers().ForEachBlock(to.GetHeight(), kBlockRows, [&](int first, int last, int) {
            if (stop && stop()) stopped = true;
            for (int y = first; y < last && !stopped; ++y) HalveRow<decltype(traits)>(from, y, to);
        });
        return stopped ? CRowIteratorBands() : to;
    });
}

template <class Traits>
void ToImageRow(const typename Traits::Sample* in, int width, QRgb* out) {
    using Sample = typename Traits::Sample;
    for (int x = 0; x < width; ++x, in += Traits::kChannels) {
        const auto byte = [&](int c) { return pixel::ToByte<Sample>(in[c]); };
        const int alpha = Traits::kHasAlpha ? byte(Traits::kColourChannels) : 255;
        constexpr bool kGrey = Traits::kColourChannels == 1;
        out[x] = qRgba(byte(kGrey ? 0 : 2), byte(kGrey ? 0 : 1), byte(0), alpha);
    }
}

}  // namespace

std::shared_ptr<const CPyramid> CPyramid::Make(const CRowIteratorBands& picture, int first,
                                               CSize full, const std::function<bool()>& stop) {
    const auto made = std::make_shared<CPyramid>();
    made->full_ = full;
    made->first_ = first;
    made->levels_.push_back(picture);
    try {
        while (std::max(made->levels_.back().GetWidth(), made->levels_.back().GetHeight()) >
               kSmallestSide) {
            CRowIteratorBands half = Halve(made->levels_.back(), stop);
            if (!half.IsAttached()) return nullptr;
            made->levels_.push_back(std::move(half));
        }
    } catch (const CNException&) {
        return nullptr;
    }
    return made;
}

int CPyramid::Nearest(int level) const { return std::clamp(level, First(), Last()); }

const CRowIteratorBands& CPyramid::Level(int level) const {
    return levels_[static_cast<std::size_t>(Nearest(level) - first_)];
}

QImage CPyramid::Image(int level, const QRect& part) const {
    const CRowIteratorBands& picture = Level(level);
    const bool alpha = picture.GetPixelFormat().IsAlphaChannelPresent();
    QImage image(part.size(), alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    return VisitPixelFormat(picture.GetPixelFormat(), QImage(), [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        for (int y = 0; y < part.height(); ++y) {
            const Sample* row = picture.Row<Sample>(part.top() + y);
            ToImageRow<decltype(traits)>(row + part.left() * traits.kChannels, part.width(),
                                         reinterpret_cast<QRgb*>(image.scanLine(y)));
        }
        return image;
    });
}
