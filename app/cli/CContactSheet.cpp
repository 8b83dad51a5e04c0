#include "app/cli/CContactSheet.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "app/imagefile/RenderText.h"
#include "host/graphics/ImageHelpers.h"
#include "hostlib/graphics/DepthConversion.h"

namespace {

constexpr int kMargin = 16;
constexpr int kLabelHeight = 30;
constexpr int kTextHeight = 15;
constexpr CColorRef kBackground = CColorRef::FromRgb(244, 244, 242);
constexpr int kInk = 40;

// Any picture as 8-bit colour on the background.
CRowIteratorBands ToColour(const CRowIteratorBands& picture) {
    CRowIteratorBands flat;
    FlattenIteratorWithColor(picture, flat, GetMask64KLUT(), kBackground).ThrowIfFailed();
    if (flat.GetPixelFormat().Is16bit()) {
        CRowIteratorBands narrow;
        ToEightBits(flat, narrow).ThrowIfFailed();
        flat.Consume(narrow);
    }
    if (flat.GetPixelFormat() == ENPixelFormat::Colour8) return flat;
    CRowIteratorBands colour;
    colour.Create(flat.GetWidth(), flat.GetHeight(), ENPixelFormat::Colour8).ThrowIfFailed();
    for (int y = 0; y < flat.GetHeight(); ++y) {
        for (int x = 0; x < flat.GetWidth(); ++x) {
            std::fill_n(colour.Row<std::uint8_t>(y) + 3 * x, 3, flat.Row<std::uint8_t>(y)[x]);
        }
    }
    return colour;
}

void Paste(const CRowIteratorBands& picture, CRowIteratorBands& sheet, CPoint at) {
    for (int y = 0; y < picture.GetHeight(); ++y) {
        std::memcpy(sheet.Row<std::uint8_t>(at.y + y) + 3 * at.x, picture.Row<std::uint8_t>(y),
                    3 * static_cast<std::size_t>(picture.GetWidth()));
    }
}

void Write(const std::string& text, CRowIteratorBands& sheet, CPoint centre) {
    const CRowIteratorBands coverage = imagefile::RenderText(text, kTextHeight);
    if (!coverage.IsAttached()) return;
    const CPoint at{centre.x - coverage.GetWidth() / 2, centre.y - coverage.GetHeight() / 2};
    for (int y = 0; y < coverage.GetHeight(); ++y) {
        for (int x = 0; x < coverage.GetWidth(); ++x) {
            if (at.x + x < 0 || at.x + x >= sheet.GetWidth()) continue;
            const int ink = coverage.Row<std::uint8_t>(y)[x];
            std::uint8_t* pixel = sheet.Row<std::uint8_t>(at.y + y) + 3 * (at.x + x);
            for (int c = 0; c < 3; ++c) {
                pixel[c] = static_cast<std::uint8_t>((pixel[c] * (255 - ink) + kInk * ink) / 255);
            }
        }
    }
}

}  // namespace

CRowIteratorBands Reduced(const CRowIteratorBands& picture, CSize cell) {
    const double scale = std::min({static_cast<double>(cell.cx) / picture.GetWidth(),
                                   static_cast<double>(cell.cy) / picture.GetHeight(), 1.0});
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(std::lround(side * scale)));
    };
    CRowIteratorBands small;
    Resample(nullptr, picture, small, scaled(picture.GetWidth()), scaled(picture.GetHeight()),
             false, false)
        .ThrowIfFailed();
    return ToColour(small);
}

void CContactSheet::Add(const std::string& name, const CRowIteratorBands& picture) {
    entries_.push_back({name, Reduced(picture, cell_)});
}

CRowIteratorBands CContactSheet::Make() const {
    const int count = static_cast<int>(entries_.size());
    const int rows = (count + columns_ - 1) / columns_;
    const CSize step{cell_.cx + kMargin, cell_.cy + kLabelHeight + kMargin};
    CRowIteratorBands sheet;
    sheet.Create(columns_ * step.cx + kMargin, rows * step.cy + kMargin, ENPixelFormat::Colour8)
        .ThrowIfFailed();
    for (int y = 0; y < sheet.GetHeight(); ++y) {
        for (int x = 0; x < sheet.GetWidth(); ++x) {
            std::uint8_t* pixel = sheet.Row<std::uint8_t>(y) + 3 * x;
            pixel[0] = static_cast<std::uint8_t>(kBackground.Blue());
            pixel[1] = static_cast<std::uint8_t>(kBackground.Green());
            pixel[2] = static_cast<std::uint8_t>(kBackground.Red());
        }
    }
    for (int i = 0; i < count; ++i) {
        const SEntry& entry = entries_[static_cast<std::size_t>(i)];
        const CPoint corner{kMargin + i % columns_ * step.cx, kMargin + i / columns_ * step.cy};
        const CRowIteratorBands& picture = entry.thumbnail;
        Paste(picture, sheet,
              {corner.x + (cell_.cx - picture.GetWidth()) / 2,
               corner.y + (cell_.cy - picture.GetHeight()) / 2});
        Write(entry.name, sheet, {corner.x + cell_.cx / 2, corner.y + cell_.cy + kLabelHeight / 2});
    }
    return sheet;
}
