#include "app/imagefile/encode/EncodeJpeg.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
// After <cstdio>, whose FILE it needs.
#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace imagefile {

namespace {

using CBuffer = std::vector<std::uint8_t>;

// Rows of blocks in a stripe. A restart interval may have 65,535 blocks, which no picture's eight
// rows have.
constexpr int kStripeBlockRows = 8;
constexpr int kBlock = 8;

enum : std::uint8_t { kStartOfImage = 0xd8, kStartOfScan = 0xda, kFrame = 0xc0, kEnd = 0xd9 };
constexpr std::uint8_t kRestart = 0xd0;

// The library reports an error by a call that must not return.
struct SErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
    char text[JMSG_LENGTH_MAX];
};

void OnError(j_common_ptr info) {
    auto* errors = reinterpret_cast<SErrorManager*>(info->err);
    (*info->err->format_message)(info, errors->text);
    std::longjmp(errors->jump, 1);
}

void SetCoding(jpeg_compress_struct& info, const SJpegCoding& coding) {
    // Places of the zigzag order in rows and columns.
    static constexpr std::uint8_t kNatural[64] = {
        0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
        41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
        30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};
    jpeg_set_quality(&info, coding.quality, TRUE);
    const std::size_t tables = std::min<std::size_t>(coding.quantisation.size(), 2);
    for (std::size_t t = 0; t < tables; ++t) {
        unsigned values[64] = {};
        for (std::size_t i = 0; i < 64; ++i) values[kNatural[i]] = coding.quantisation[t][i];
        // One table alone serves both.
        for (std::size_t slot = t; slot < (tables == 1 ? 2 : t + 1); ++slot) {
            jpeg_add_quant_table(&info, static_cast<int>(slot), values, 100, FALSE);
        }
    }
    if (info.num_components != 3) return;
    info.comp_info[0].h_samp_factor = coding.horizontal;
    info.comp_info[0].v_samp_factor = coding.vertical;
}

// Owns what the library allocates.
struct SCompressor {
    SErrorManager errors = {};
    jpeg_compress_struct info = {};
    unsigned char* bytes = nullptr;
    unsigned long length = 0;

    SCompressor() {
        info.err = jpeg_std_error(&errors.base);
        errors.base.error_exit = &OnError;
    }
    SCompressor(const SCompressor&) = delete;
    SCompressor& operator=(const SCompressor&) = delete;
    ~SCompressor() {
        jpeg_destroy_compress(&info);
        std::free(bytes);
    }
};

class CJpegStripes {
  public:
    CJpegStripes(const CRowSource& rows, const SJpegCoding& coding)
        : rows_(rows),
          coding_(coding),
          is_colour_(rows.Format().ColourChannels() == 3),
          stripe_rows_(kStripeBlockRows * kBlock * (is_colour_ ? coding.vertical : 1)) {}

    int Count() const { return (rows_.Height() - 1) / stripe_rows_ + 1; }

    // The stripe as a JPEG file of its own.
    void Encode(int stripe, CBuffer& out) const {
        CBuffer row(rows_.RowBytes());
        SCompressor compressor;
        if (setjmp(compressor.errors.jump) != 0) throw std::runtime_error(compressor.errors.text);
        Begin(compressor, stripe);
        for (int y = 0; y < RowsOf(stripe); ++y) {
            rows_.Get(stripe * stripe_rows_ + y, row.data());
            JSAMPROW sample_row = row.data();
            jpeg_write_scanlines(&compressor.info, &sample_row, 1);
        }
        jpeg_finish_compress(&compressor.info);
        out.assign(compressor.bytes, compressor.bytes + compressor.length);
    }

  private:
    int RowsOf(int stripe) const {
        return std::min(stripe_rows_, rows_.Height() - stripe * stripe_rows_);
    }

    void Begin(SCompressor& compressor, int stripe) const {
        jpeg_compress_struct& info = compressor.info;
        jpeg_create_compress(&info);
        jpeg_mem_dest(&info, &compressor.bytes, &compressor.length);
        info.image_width = static_cast<JDIMENSION>(rows_.Width());
        info.image_height = static_cast<JDIMENSION>(RowsOf(stripe));
        info.input_components = is_colour_ ? 3 : 1;
        info.in_color_space = is_colour_ ? JCS_RGB : JCS_GRAYSCALE;
        jpeg_set_defaults(&info);
        SetCoding(info, coding_);
        info.write_JFIF_header = FALSE;
        info.write_Adobe_marker = FALSE;
        if (Count() > 1) info.restart_interval = static_cast<unsigned>(BlocksOfStripe());
        jpeg_start_compress(&info, TRUE);
    }

    int BlocksOfStripe() const {
        const int width = kBlock * (is_colour_ ? coding_.horizontal : 1);
        return kStripeBlockRows * ((rows_.Width() + width - 1) / width);
    }

    const CRowSource& rows_;
    const SJpegCoding& coding_;
    bool is_colour_;
    int stripe_rows_;
};

// Where the entropy-coded data of a file begin; its segments are passed to `each`, with the place
// of their content.
template <class Function>
std::size_t BeginOfScan(std::span<const std::uint8_t> file, Function&& each) {
    std::size_t at = 2;
    for (;;) {
        const std::uint8_t marker = file[at + 1];
        each(marker, at + 4);
        at += 2 + (std::size_t{file[at + 2]} << 8 | file[at + 3]);
        if (marker == kStartOfScan) return at;
    }
}

// The first stripe's file, up to its scan, with the height of the whole picture.
CBuffer Front(std::span<const std::uint8_t> first, int height) {
    CBuffer front(first.begin(), first.end());
    const std::size_t scan = BeginOfScan(first, [&](std::uint8_t marker, std::size_t content) {
        if (marker != kFrame && marker != kFrame + 1) return;
        front[content + 1] = static_cast<std::uint8_t>(height >> 8);
        front[content + 2] = static_cast<std::uint8_t>(height);
    });
    front.resize(scan);
    return front;
}

void Append(CBuffer& out, const SSegment& segment) {
    const std::size_t length = segment.data.size() + 2;
    out.insert(out.end(), {0xff, segment.marker, static_cast<std::uint8_t>(length >> 8),
                           static_cast<std::uint8_t>(length)});
    out.insert(out.end(), segment.data.begin(), segment.data.end());
}

}  // namespace

// The library scales the luminance table of the standard (ITU-T T.81, annex K), whose values have
// this sum.
int QualityOf(const std::vector<std::vector<std::uint16_t>>& quantisation) {
    if (quantisation.empty()) return 95;
    double sum = 0;
    for (const std::uint16_t value : quantisation[0]) sum += value;
    constexpr double kStandardSum = 3688;
    const double scale = sum / kStandardSum * 100;
    const double quality = scale > 100 ? 5000 / scale : (200 - scale) / 2;
    return static_cast<int>(std::clamp(std::round(quality), 1.0, 100.0));
}

void EncodeJpeg(const CRowSource& rows, const std::vector<SSegment>& segments,
                const SJpegCoding& coding, const SEncoderOutput& output) {
    CBuffer begin = {0xff, kStartOfImage};
    for (const SSegment& segment : segments) Append(begin, segment);
    output.file.Write(begin);
    const CJpegStripes stripes(rows, coding);
    const int count = stripes.Count();
    MakeInOrder(
        count, [&](int stripe, CBuffer& bytes) { stripes.Encode(stripe, bytes); },
        [&](int stripe, std::span<const std::uint8_t> file) {
            CBuffer out;
            if (stripe == 0) {
                const CBuffer front = Front(file, rows.Height());
                out.assign(front.begin() + 2, front.end());
            }
            const std::size_t scan = BeginOfScan(file, [](std::uint8_t, std::size_t) {});
            out.insert(out.end(), file.begin() + static_cast<std::ptrdiff_t>(scan), file.end() - 2);
            const bool is_last = stripe == count - 1;
            const auto marker =
                static_cast<std::uint8_t>(is_last ? int{kEnd} : kRestart + stripe % 8);
            out.insert(out.end(), {0xff, marker});
            output.file.Write(out);
            output.advance(stripe + 1, count);
        });
}

}  // namespace imagefile
