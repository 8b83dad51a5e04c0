#include "app/imagefile/encode/EncodePng.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "app/imagefile/encode/Deflate.h"

namespace imagefile {

namespace {

using CBuffer = std::vector<std::uint8_t>;

constexpr int kStripeRows = 64;
constexpr std::array<std::uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};

void AppendNumber(CBuffer& out, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

// A chunk is its length, type and data, and the checksum of the last two. Begin answers where it
// begins in `out`.
std::size_t BeginChunk(CBuffer& out, std::string_view type) {
    const std::size_t at = out.size();
    AppendNumber(out, 0);
    out.insert(out.end(), type.begin(), type.end());
    return at;
}
void EndChunk(CBuffer& out, std::size_t at) {
    const auto length = static_cast<std::uint32_t>(out.size() - at - 8);
    for (std::size_t i = 0; i < 4; ++i) {
        out[at + i] = static_cast<std::uint8_t>(length >> (24 - 8 * i));
    }
    AppendNumber(out, Crc32(std::span(out).subspan(at + 4)));
}
void AppendChunk(CBuffer& out, std::string_view type, std::span<const std::uint8_t> data) {
    const std::size_t at = BeginChunk(out, type);
    out.insert(out.end(), data.begin(), data.end());
    EndChunk(out, at);
}

CBuffer Header(const CRowSource& rows) {
    constexpr std::uint8_t kColourTypes[] = {0, 0, 4, 2, 6};  // by the number of channels
    CBuffer header;
    AppendNumber(header, static_cast<std::uint32_t>(rows.Width()));
    AppendNumber(header, static_cast<std::uint32_t>(rows.Height()));
    const std::uint8_t depth = rows.Format().Is16bit() ? 16 : 8;
    header.insert(header.end(), {depth, kColourTypes[rows.Format().Channels()], 0, 0, 0});
    return header;
}

// The filters of PNG, by their numbers; each row is told from its left neighbours and the row
// above.
enum class ENFilter : std::uint8_t { None, Sub, Up, Average, Paeth };

std::uint8_t PaethOf(int left, int above, int corner) {
    const int to_left = std::abs(above - corner);
    const int to_above = std::abs(left - corner);
    const int to_corner = std::abs(left + above - 2 * corner);
    const int nearest = to_left <= to_above && to_left <= to_corner ? left
                        : to_above <= to_corner                     ? above
                                                                    : corner;
    return static_cast<std::uint8_t>(nearest);
}

// What the filter foretells from the neighbours `left`, `above` and `corner`.
template <ENFilter kFilter>
std::uint8_t Foretell(std::uint8_t left, std::uint8_t above, std::uint8_t corner) {
    if (kFilter == ENFilter::Sub) return left;
    if (kFilter == ENFilter::Up) return above;
    if (kFilter == ENFilter::Average) return static_cast<std::uint8_t>((left + above) >> 1);
    if (kFilter == ENFilter::Paeth) return PaethOf(left, above, corner);
    return 0;
}

template <ENFilter kFilter>
void FilterRow(const std::uint8_t* row, const std::uint8_t* above, std::size_t bytes,
               std::size_t pixel, std::uint8_t* out) {
    for (std::size_t i = 0; i < std::min(pixel, bytes); ++i) {
        out[i] = static_cast<std::uint8_t>(row[i] - Foretell<kFilter>(0, above[i], 0));
    }
    for (std::size_t i = pixel; i < bytes; ++i) {
        out[i] = static_cast<std::uint8_t>(
            row[i] - Foretell<kFilter>(row[i - pixel], above[i], above[i - pixel]));
    }
}

void FilterRow(ENFilter filter, const std::uint8_t* row, const std::uint8_t* above,
               std::size_t bytes, std::size_t pixel, std::uint8_t* out) {
    constexpr decltype(&FilterRow<ENFilter::None>) kFilters[] = {
        &FilterRow<ENFilter::None>, &FilterRow<ENFilter::Sub>, &FilterRow<ENFilter::Up>,
        &FilterRow<ENFilter::Average>, &FilterRow<ENFilter::Paeth>};
    kFilters[static_cast<int>(filter)](row, above, bytes, pixel, out);
}

class CStripes {
  public:
    CStripes(const CRowSource& rows, int level)
        : rows_(rows),
          level_(level),
          row_bytes_(rows.RowBytes()),
          pixel_(static_cast<std::size_t>(rows.Format().PixelBytes())),
          adlers_(static_cast<std::size_t>(Count())) {}

    int Count() const { return (rows_.Height() - 1) / kStripeRows + 1; }

    // The stripe's rows as an IDAT chunk; the first one begins the zlib stream.
    void Make(int stripe, CBuffer& out) {
        const CBuffer& filtered = Filtered(stripe);
        adlers_[static_cast<std::size_t>(stripe)] = Adler32(filtered);
        const std::size_t at = BeginChunk(out, "IDAT");
        if (stripe == 0) out.insert(out.end(), {0x78, 0x01});
        AppendDeflated(filtered, level_, stripe == Count() - 1, out);
        if (stripe < Count() - 1) EndChunk(out, at);
    }

    // The checksum of all rows, once all stripes are made.
    std::uint32_t Adler() const {
        std::uint32_t all = 1;
        for (int stripe = 0; stripe < Count(); ++stripe) {
            const std::size_t length = static_cast<std::size_t>(RowsOf(stripe)) * (row_bytes_ + 1);
            all = JoinAdler32(all, adlers_[static_cast<std::size_t>(stripe)], length);
        }
        return all;
    }

  private:
    int RowsOf(int stripe) const {
        return std::min(kStripeRows, rows_.Height() - stripe * kStripeRows);
    }

    // Valid until the thread's next call.
    const CBuffer& Filtered(int stripe) const;
    ENFilter Choose(std::span<const std::uint8_t> raw, int rows, CBuffer& scratch) const;

    const CRowSource& rows_;
    int level_;
    std::size_t row_bytes_, pixel_;
    std::vector<std::uint32_t> adlers_;
};

// The stripe's rows of samples with the first byte high; the row above comes first, black at the
// picture's top.
void GetRows(const CRowSource& rows, int first, int count, CBuffer& raw) {
    const std::size_t bytes = rows.RowBytes();
    raw.resize(bytes * static_cast<std::size_t>(count + 1));
    if (first == 0) std::fill_n(raw.begin(), bytes, std::uint8_t{0});
    for (int y = first == 0 ? 0 : -1; y < count; ++y) {
        std::uint8_t* row = &raw[bytes * static_cast<std::size_t>(y + 1)];
        rows.Get(first + y, row);
        if (!rows.Format().Is16bit() || std::endian::native == std::endian::big) continue;
        auto* samples = reinterpret_cast<std::uint16_t*>(row);
        for (std::size_t i = 0; i < bytes / 2; ++i) {
            samples[i] = static_cast<std::uint16_t>(samples[i] << 8 | samples[i] >> 8);
        }
    }
}

const CBuffer& CStripes::Filtered(int stripe) const {
    static thread_local CBuffer raw, out;
    const int count = RowsOf(stripe);
    GetRows(rows_, stripe * kStripeRows, count, raw);
    out.resize((row_bytes_ + 1) * static_cast<std::size_t>(count));
    const ENFilter filter = Choose(raw, count, out);
    for (int y = 0; y < count; ++y) {
        const std::uint8_t* above = &raw[row_bytes_ * static_cast<std::size_t>(y)];
        std::uint8_t* to = &out[(row_bytes_ + 1) * static_cast<std::size_t>(y)];
        *to = static_cast<std::uint8_t>(filter);
        FilterRow(filter, above + row_bytes_, above, row_bytes_, pixel_, to + 1);
    }
    return out;
}

// The filter that makes the least of a few rows, by trial: flat drawings are better left alone,
// photographs not, and no simple sum of differences tells them apart.
ENFilter CStripes::Choose(std::span<const std::uint8_t> raw, int rows, CBuffer& scratch) const {
    constexpr ENFilter kTried[] = {ENFilter::Average, ENFilter::None, ENFilter::Paeth};
    constexpr int kSampleRows = 2;
    const int sampled = std::min(kSampleRows, rows);
    ENFilter best = kTried[0];
    std::size_t least = SIZE_MAX;
    CBuffer compressed;
    for (const ENFilter filter : kTried) {
        for (int y = 0; y < sampled; ++y) {
            const std::size_t at =
                row_bytes_ * static_cast<std::size_t>(rows / 2 - sampled / 2 + y);
            FilterRow(filter, &raw[at + row_bytes_], &raw[at], row_bytes_, pixel_,
                      &scratch[row_bytes_ * static_cast<std::size_t>(y)]);
        }
        compressed.clear();
        AppendDeflated(std::span(scratch).first(row_bytes_ * static_cast<std::size_t>(sampled)),
                       kFastDeflate, true, compressed);
        if (compressed.size() >= least) continue;
        least = compressed.size();
        best = filter;
    }
    return best;
}

}  // namespace

void EncodePng(const CRowSource& rows, const std::vector<SChunk>& chunks, int level,
               const SEncoderOutput& output) {
    CBuffer begin(kSignature.begin(), kSignature.end());
    AppendChunk(begin, "IHDR", Header(rows));
    CBuffer end;
    for (const SChunk& chunk : chunks) {
        AppendChunk(chunk.follows_pixels ? end : begin, chunk.type, chunk.data);
    }
    AppendChunk(end, "IEND", {});

    output.file.Write(begin);
    CStripes stripes(rows, level);
    const int count = stripes.Count();
    MakeInOrder(
        count, [&](int stripe, CBuffer& bytes) { stripes.Make(stripe, bytes); },
        [&](int stripe, std::span<const std::uint8_t> bytes) {
            if (stripe < count - 1) {
                output.file.Write(bytes);
            } else {  // its chunk ends with the checksum of all
                CBuffer last(bytes.begin(), bytes.end());
                AppendNumber(last, stripes.Adler());
                EndChunk(last, 0);
                output.file.Write(last);
            }
            output.advance(stripe + 1, count);
        });
    output.file.Write(end);
}

}  // namespace imagefile
