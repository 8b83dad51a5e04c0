#include "host/graphics/CRowIteratorBands.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "host/graphics/PixelMath.h"
#include "hostlib/graphics/CPixelStore.h"

namespace {

// The samples that a channel access selects: the first one and how many, of each pixel.
struct SSelection {
    int first;
    int count;
};

SSelection SelectionOf(CNPixelFormat format, ENChannel channel) {
    switch (channel) {
        case ENChannel::Colour:
        case ENChannel::Grey:
            return {0, format.ColourChannels()};
        case ENChannel::Alpha:
            return {format.Channels() - 1, 1};
        case ENChannel::All:
            break;
    }
    return {0, format.Channels()};
}

// Copies `count` samples of every pixel between two rows of different pixel widths.
void CopySamples(const std::uint8_t* from, int from_step, std::uint8_t* to, int to_step, int bytes,
                 int pixels) {
    for (int x = 0; x < pixels; ++x, from += from_step, to += to_step) {
        std::memcpy(to, from, static_cast<std::size_t>(bytes));
    }
}

}  // namespace

// Rows taken under a channel selection, until they are given back. Buffers are kept for reuse.
struct CRowIteratorBands::SGatheredRows {
    struct SRow {
        int y = -1;
        std::vector<std::uint8_t> samples;
    };
    std::vector<SRow> rows;

    SRow& Take(int y, std::size_t bytes) {
        auto found =
            std::find_if(rows.begin(), rows.end(), [&](const SRow& r) { return r.y == y; });
        if (found == rows.end()) {
            found = std::find_if(rows.begin(), rows.end(), [](const SRow& r) { return r.y < 0; });
        }
        if (found == rows.end()) found = rows.emplace(rows.end());
        found->y = y;
        found->samples.resize(bytes);
        return *found;
    }
    SRow* Find(int y) {
        for (SRow& row : rows) {
            if (row.y == y) return &row;
        }
        return nullptr;
    }
};

CRowIteratorBands::CRowIteratorBands() = default;
CRowIteratorBands::~CRowIteratorBands() = default;
CRowIteratorBands::CRowIteratorBands(CRowIteratorBands&& other) noexcept {
    *this = std::move(other);
}

CRowIteratorBands::CRowIteratorBands(const CRowIteratorBands& other) { *this = other; }

CRowIteratorBands& CRowIteratorBands::operator=(const CRowIteratorBands& other) {
    if (this == &other) return *this;
    Adopt(other.store_, other.width_, other.height_, other.format_, other.origin_);
    pixels_ = other.pixels_;
    channel_ = other.channel_;
    modify_mode_ = other.modify_mode_;
    return *this;
}

CRowIteratorBands& CRowIteratorBands::operator=(CRowIteratorBands&& other) noexcept {
    if (this == &other) return *this;
    *this = std::as_const(other);
    other.Destroy();
    return *this;
}

void CRowIteratorBands::Adopt(std::shared_ptr<CPixelStore> store, int width, int height,
                              CNPixelFormat format, CPoint origin) {
    store_ = std::move(store);
    pixels_ = store_ ? store_->Pixels() : nullptr;
    stride_ = store_ ? store_->Stride() : 0;
    width_ = width;
    height_ = height;
    format_ = format;
    origin_ = origin;
    channel_ = ENChannel::All;
    modify_mode_ = 0;
    gathered_.reset();
}

CErrorAutoThrow CRowIteratorBands::Create(int width, int height, CNPixelFormat format,
                                          CPoint origin) {
    if (width < 1 || height < 1 || !format.IsKnown()) return TolmErrorCode::UnusableInput;
    return CatchErrors([&]() -> CErrorAutoThrow {
        auto store = CPixelStore::Allocate(width, height, format);
        if (!store) return TolmErrorCode::NotCreated;
        Adopt(std::move(store), width, height, format, origin);
        return {};
    });
}

CErrorAutoThrow CRowIteratorBands::Attach(void* pixels, std::ptrdiff_t stride, int width,
                                          int height, CNPixelFormat format,
                                          std::function<void()> release) {
    if (!pixels || width < 1 || height < 1 || !format.IsKnown()) {
        return TolmErrorCode::UnusableInput;
    }
    return CatchErrors([&]() -> CErrorAutoThrow {
        Adopt(CPixelStore::Borrow(pixels, stride, std::move(release)), width, height, format, {});
        return {};
    });
}

CErrorAutoThrow CRowIteratorBands::Match(const CRowIteratorBands& source) {
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    if (SharesPixelsWith(source)) return {};
    const bool reusable = store_ && store_.use_count() == 1 && width_ == source.width_ &&
                          height_ == source.height_ && format_ == source.format_;
    if (!reusable) {
        CErrorAutoThrow created =
            Create(source.width_, source.height_, source.format_, source.origin_);
        if (created.Failed()) return created;
    }
    origin_ = source.origin_;
    channel_ = ENChannel::All;
    return {};
}

CErrorAutoThrow CRowIteratorBands::Copy(const CRowIteratorBands& source, int /*mode*/) {
    CErrorAutoThrow matched = Match(source);
    if (matched.Failed() || SharesPixelsWith(source)) return matched;
    const auto row =
        static_cast<std::size_t>(width_) * static_cast<std::size_t>(format_.PixelBytes());
    if (stride_ == source.stride_ && stride_ > 0) {
        const auto rows = static_cast<std::size_t>(height_ - 1);
        std::memcpy(pixels_, source.pixels_, rows * static_cast<std::size_t>(stride_) + row);
        return {};
    }
    for (int y = 0; y < height_; ++y) CopyRow(source, y);
    return {};
}

CErrorAutoThrow CRowIteratorBands::CreateCompatible(const CRowIteratorBands& source, int mode) {
    const CPoint origin = source.origin_;
    CErrorAutoThrow created = CreateCompatible(source.width_, source.height_, source, mode);
    if (!created.Failed()) origin_ = origin;
    return created;
}

CErrorAutoThrow CRowIteratorBands::CreateCompatible(int width, int height,
                                                    const CRowIteratorBands& model, int /*mode*/) {
    CErrorAutoThrow created = Create(width, height, model.format_);
    if (created.Failed()) return created;
    std::memset(pixels_, 0, static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_));
    return created;
}

CErrorAutoThrow CRowIteratorBands::CreateGreyscale(int width, int height, CColorRef colour) {
    CErrorAutoThrow created = Create(width, height, ENPixelFormat::Grey16);
    if (created.Failed()) return created;
    const auto grey = static_cast<std::uint16_t>(pixel::Times257(colour.Grey()));
    for (int y = 0; y < height; ++y) std::fill_n(Row<std::uint16_t>(y), width, grey);
    return created;
}

void CRowIteratorBands::Destroy() { Adopt(nullptr, 0, 0, {}, {}); }

void CRowIteratorBands::Consume(CRowIteratorBands& other) { *this = std::move(other); }

CErrorAutoThrow CRowIteratorBands::SetChannelAccess(ENChannel channel, int modify_mode) {
    if (!IsAttached()) return TolmErrorCode::UnusableInput;
    if (channel == ENChannel::Alpha && !format_.IsAlphaChannelPresent()) {
        return TolmErrorCode::UnusableInput;
    }
    channel_ = channel;
    modify_mode_ = modify_mode;
    return {};
}

CNPixelFormat CRowIteratorBands::GetAccessFormat() const {
    return CNPixelFormat::Of(SelectionOf(format_, channel_).count, format_.Is16bit());
}

std::uint8_t* CRowIteratorBands::Gather(int y) const {
    const SSelection selection = SelectionOf(format_, channel_);
    const int sample_bytes = format_.SampleBytes();
    const int taken = selection.count * sample_bytes;
    if (!gathered_) gathered_ = std::make_unique<SGatheredRows>();
    auto& row =
        gathered_->Take(y, static_cast<std::size_t>(width_) * static_cast<std::size_t>(taken));
    CopySamples(Row<std::uint8_t>(y) + selection.first * sample_bytes, format_.PixelBytes(),
                row.samples.data(), taken, taken, width_);
    return row.samples.data();
}

CErrorAutoThrow CRowIteratorBands::GetRow(std::uint8_t*& row, int y) {
    row = nullptr;
    if (!HasRow(y)) return TolmErrorCode::UnusableInput;
    row = channel_ == ENChannel::All ? Row<std::uint8_t>(y) : Gather(y);
    return {};
}

CErrorAutoThrow CRowIteratorBands::GetRow(const std::uint8_t*& row, int y) const {
    row = nullptr;
    if (!HasRow(y)) return TolmErrorCode::UnusableInput;
    row = channel_ == ENChannel::All ? Row<std::uint8_t>(y) : Gather(y);
    return {};
}

void CRowIteratorBands::ReleaseRow(int y) {
    SGatheredRows::SRow* row = gathered_ ? gathered_->Find(y) : nullptr;
    if (!row) return;
    const SSelection selection = SelectionOf(format_, channel_);
    const int sample_bytes = format_.SampleBytes();
    const int taken = selection.count * sample_bytes;
    CopySamples(row->samples.data(), taken, Row<std::uint8_t>(y) + selection.first * sample_bytes,
                format_.PixelBytes(), taken, width_);
    row->y = -1;
}

void CRowIteratorBands::ReleaseRow(int y) const {
    if (SGatheredRows::SRow* row = gathered_ ? gathered_->Find(y) : nullptr) row->y = -1;
}
