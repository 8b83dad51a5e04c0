#include "app/imagefile/encode/EncodeTiff.h"

#include <tiffio.h>
#include <unistd.h>
#include <zstd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>
#include <stdexcept>

#include "app/imagefile/encode/Deflate.h"
#include "app/imagefile/encode/Lzw.h"

namespace imagefile {

namespace {

using CBuffer = std::vector<std::uint8_t>;

// Strips of about this size: readers hold one at a time.
constexpr std::size_t kStripBytes = 5 << 19;
constexpr int kZstdLevel = 3;

// Turns samples into their differences from the pixel to the left, in the byte order of the file.
template <class Sample>
void Difference(CBuffer& row, std::size_t channels) {
    auto* samples = reinterpret_cast<Sample*>(row.data());
    for (std::size_t i = row.size() / sizeof(Sample) - 1; i >= channels; --i) {
        samples[i] = static_cast<Sample>(samples[i] - samples[i - channels]);
    }
}

void SwapBytes(CBuffer& row) {
    auto* samples = reinterpret_cast<std::uint16_t*>(row.data());
    for (std::size_t i = 0; i < row.size() / 2; ++i) {
        samples[i] = static_cast<std::uint16_t>(samples[i] << 8 | samples[i] >> 8);
    }
}

void ZstdFrame(std::span<const std::uint8_t> bytes, CBuffer& out) {
    out.resize(ZSTD_compressBound(bytes.size()));
    const std::size_t length =
        ZSTD_compress(out.data(), out.size(), bytes.data(), bytes.size(), kZstdLevel);
    if (ZSTD_isError(length)) throw std::runtime_error(ZSTD_getErrorName(length));
    out.resize(length);
}

void Compress(std::span<const std::uint8_t> bytes, ENTiffCompression compression, CBuffer& out) {
    switch (compression) {
        case ENTiffCompression::Lzw:
            return LzwEncode(bytes, out);
        case ENTiffCompression::Deflate:
            return AppendZlibStream(bytes, kFastDeflate, out);
        case ENTiffCompression::Zstd:
            return ZstdFrame(bytes, out);
        case ENTiffCompression::None:
            out.assign(bytes.begin(), bytes.end());
    }
}

// The library's view of the output file, and what it complained of.
struct STiffStream {
    COutputFile& file;
    int write_error = 0;
    std::string complaint;
};
STiffStream& StreamOf(thandle_t handle) { return *static_cast<STiffStream*>(handle); }

tmsize_t OnRead(thandle_t handle, void* bytes, tmsize_t length) {
    return read(StreamOf(handle).file.Descriptor(), bytes, static_cast<std::size_t>(length));
}

tmsize_t OnWrite(thandle_t handle, void* bytes, tmsize_t length) {
    const auto* from = static_cast<const char*>(bytes);
    for (tmsize_t done = 0; done < length;) {
        const ssize_t written = write(StreamOf(handle).file.Descriptor(), from + done,
                                      static_cast<std::size_t>(length - done));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            StreamOf(handle).write_error = errno;
            return -1;
        }
        done += written;
    }
    return length;
}

toff_t OnSeek(thandle_t handle, toff_t offset, int whence) {
    return static_cast<toff_t>(
        lseek(StreamOf(handle).file.Descriptor(), static_cast<off_t>(offset), whence));
}

toff_t OnSize(thandle_t handle) {
    const off_t here = lseek(StreamOf(handle).file.Descriptor(), 0, SEEK_CUR);
    const off_t end = lseek(StreamOf(handle).file.Descriptor(), 0, SEEK_END);
    lseek(StreamOf(handle).file.Descriptor(), here, SEEK_SET);
    return static_cast<toff_t>(end);
}

int OnClose(thandle_t) { return 0; }

int OnError(TIFF*, void* stream, const char*, const char* format, va_list arguments) {
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    static_cast<STiffStream*>(stream)->complaint = text;
    return 1;
}

int OnWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

struct SCloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using CTiff = std::unique_ptr<TIFF, SCloseTiff>;

CTiff Open(STiffStream& stream, const char* mode) {
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> options(
        TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
    if (!options) throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &OnError, &stream);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &OnWarning, &stream);
    return CTiff(TIFFClientOpenExt("output", mode, &stream, &OnRead, &OnWrite, &OnSeek, &OnClose,
                                   &OnSize, nullptr, nullptr, options.get()));
}

class CTiffEncoder {
  public:
    CTiffEncoder(const CRowSource& rows, ENTiffCompression compression,
                 const SEncoderOutput& output)
        : rows_(rows), compression_(compression), output_(output), stream_{output.file, 0, {}} {
        const std::size_t rows_of_strip = kStripBytes / std::max<std::size_t>(rows.RowBytes(), 1);
        strip_rows_ = static_cast<int>(
            std::clamp<std::size_t>(rows_of_strip, 1, static_cast<std::size_t>(rows.Height())));
    }

    void Encode(const SMetadata& metadata, CLosses& losses) {
        const SImageHeader written = {{rows_.Width(), rows_.Height()}, rows_.Format()};
        const bool is_big = NeedsBigTiff();
        const STiffPlan plan = PlanTiff(metadata, written, losses);
        is_swapped_ = plan.is_big_endian != (std::endian::native == std::endian::big);
        const std::string mode =
            std::string("w") + (is_big ? "8" : "4") + (plan.is_big_endian ? "b" : "l");
        CTiff tiff = Open(stream_, mode.c_str());
        Expect(tiff != nullptr);
        const std::size_t header_bytes = is_big ? 16 : 8;
        if (plan.front.size() > header_bytes) {
            output_.file.Write(std::span(plan.front).subspan(header_bytes));
        }
        SetPixelTags(tiff.get());
        WriteStrips(tiff.get());
        Expect(TIFFWriteDirectory(tiff.get()) != 0);
        tiff.reset();
        Expect(true);
        if (const int error = FinishTiff(plan, output_.file.Descriptor(), losses)) {
            output_.file.FailWriting(error);
        }
    }

  private:
    // The library may go on after a write that failed.
    void Expect(bool succeeded) const {
        if (stream_.write_error != 0) output_.file.FailWriting(stream_.write_error);
        if (!succeeded) throw std::runtime_error(stream_.complaint);
    }

    // Offsets in a classic TIFF file have 32 bits; LZW makes noise up to half as long again.
    bool NeedsBigTiff() const {
        constexpr double kMaxBytes = 2.8e9;
        return static_cast<double>(rows_.RowBytes()) * rows_.Height() > kMaxBytes;
    }
    bool HasPredictor() const { return compression_ != ENTiffCompression::None; }

    void SetPixelTags(TIFF* tiff) const {
        const CNPixelFormat format = rows_.Format();
        const auto number = [](auto value) { return static_cast<unsigned>(value); };
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, number(rows_.Width()));
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, number(rows_.Height()));
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, format.Is16bit() ? 16 : 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, format.Channels());
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                     format.ColourChannels() == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, number(strip_rows_));
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, static_cast<int>(compression_));
        if (HasPredictor()) TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        const std::uint16_t straight_alpha = EXTRASAMPLE_UNASSALPHA;
        if (format.IsAlphaChannelPresent()) {
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &straight_alpha);
        }
    }

    void Strip(int strip, CBuffer& out) const {
        const int first = strip * strip_rows_;
        const int count = std::min(strip_rows_, rows_.Height() - first);
        static thread_local CBuffer bytes, row;
        bytes.clear();
        row.resize(rows_.RowBytes());
        const auto channels = static_cast<std::size_t>(rows_.Format().Channels());
        for (int y = first; y < first + count; ++y) {
            rows_.Get(y, row.data());
            const bool is_wide = rows_.Format().Is16bit();
            if (HasPredictor()) {
                is_wide ? Difference<std::uint16_t>(row, channels)
                        : Difference<std::uint8_t>(row, channels);
            }
            if (is_wide && is_swapped_) SwapBytes(row);
            bytes.insert(bytes.end(), row.begin(), row.end());
        }
        Compress(bytes, compression_, out);
    }

    void WriteStrips(TIFF* tiff) {
        const int count = (rows_.Height() - 1) / strip_rows_ + 1;
        MakeInOrder(
            count, [&](int strip, CBuffer& bytes) { Strip(strip, bytes); },
            [&](int strip, std::span<const std::uint8_t> bytes) {
                Expect(TIFFWriteRawStrip(tiff, static_cast<std::uint32_t>(strip),
                                         const_cast<std::uint8_t*>(bytes.data()),
                                         static_cast<tmsize_t>(bytes.size())) >= 0);
                output_.advance(strip + 1, count);
            });
    }

    const CRowSource& rows_;
    ENTiffCompression compression_;
    const SEncoderOutput& output_;
    STiffStream stream_;
    int strip_rows_ = 1;
    bool is_swapped_ = false;
};

}  // namespace

void EncodeTiff(const CRowSource& rows, const SMetadata& metadata, ENTiffCompression compression,
                const SEncoderOutput& output, CLosses& losses) {
    CTiffEncoder(rows, compression, output).Encode(metadata, losses);
}

}  // namespace imagefile
