#include "app/imagefile/encode/EncodeWebp.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

// Measured on photographs: above these, files get hardly smaller for the time.
constexpr int kLosslessEffort = 1;  // 0 to 9
constexpr int kLossyMethod = 2;     // 0 to 6
constexpr int kPercent = 100;

struct SFree {
    void operator()(WebPPicture* picture) const { WebPPictureFree(picture); }
    void operator()(WebPMemoryWriter* writer) const { WebPMemoryWriterClear(writer); }
    void operator()(WebPMux* mux) const { WebPMuxDelete(mux); }
    void operator()(WebPData* data) const { WebPDataClear(data); }
};
template <class Object>
using TOwner = std::unique_ptr<Object, SFree>;

// Passes progress on, and keeps what that throws from crossing the library.
struct SWatch {
    const SEncoderOutput& output;
    std::exception_ptr stopped;
};

int OnProgress(int percent, const WebPPicture* picture) {
    auto* watch = static_cast<SWatch*>(picture->user_data);
    try {
        watch->output.advance(percent, kPercent);
        return 1;
    } catch (...) {
        watch->stopped = std::current_exception();
        return 0;
    }
}

[[noreturn]] void Fail(WebPEncodingError code) {
    switch (code) {
        case VP8_ENC_ERROR_OUT_OF_MEMORY:
        case VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY:
            throw std::bad_alloc();
        case VP8_ENC_ERROR_FILE_TOO_BIG:
            throw std::runtime_error(Tr("larger than the 4 GB that WebP can hold"));
        default:
            throw std::runtime_error("WebP encoder error " +
                                     std::to_string(static_cast<int>(code)));
    }
}

WebPConfig Configuration(std::optional<int> quality) {
    WebPConfig config;
    bool is_ok = WebPConfigInit(&config) != 0;
    if (quality) {
        config.quality = static_cast<float>(*quality);
        config.method = kLossyMethod;
    } else {
        is_ok = is_ok && WebPConfigLosslessPreset(&config, kLosslessEffort) != 0;
    }
    config.exact = 1;
    config.thread_level = 1;
    if (!is_ok || !WebPValidateConfig(&config)) {
        throw std::runtime_error("the WebP library does not fit");
    }
    return config;
}

void FillPicture(const CRowSource& rows, WebPPicture& picture) {
    const int channels = rows.Format().Channels();
    std::vector<std::uint8_t> row(rows.RowBytes());
    for (int y = 0; y < rows.Height(); ++y) {
        rows.Get(y, row.data());
        const std::uint8_t* in = row.data();
        std::uint32_t* out = picture.argb + static_cast<std::ptrdiff_t>(y) * picture.argb_stride;
        for (int x = 0; x < rows.Width(); ++x, in += channels) {
            const std::uint32_t alpha = channels == 4 ? in[3] : 255;
            out[x] = alpha << 24 | std::uint32_t{in[0]} << 16 | std::uint32_t{in[1]} << 8 | in[2];
        }
    }
}

void WriteAssembled(const WebPMemoryWriter& encoded, const std::vector<SChunk>& chunks,
                    COutputFile& file) {
    if (chunks.empty()) return file.Write({encoded.mem, encoded.size});
    const TOwner<WebPMux> mux(WebPMuxNew());
    const WebPData image = {encoded.mem, encoded.size};
    bool is_ok = mux && WebPMuxSetImage(mux.get(), &image, 0) == WEBP_MUX_OK;
    for (const SChunk& chunk : chunks) {
        const WebPData data = {chunk.data.data(), chunk.data.size()};
        is_ok = is_ok && WebPMuxSetChunk(mux.get(), chunk.type.c_str(), &data, 0) == WEBP_MUX_OK;
    }
    WebPData whole = {};
    const TOwner<WebPData> owner(&whole);
    if (!is_ok || WebPMuxAssemble(mux.get(), &whole) != WEBP_MUX_OK) throw std::bad_alloc();
    file.Write({whole.bytes, whole.size});
}

}  // namespace

void EncodeWebp(const CRowSource& rows, const std::vector<SChunk>& chunks,
                std::optional<int> quality, const SEncoderOutput& output) {
    const WebPConfig config = Configuration(quality);
    WebPPicture picture;
    if (!WebPPictureInit(&picture)) throw std::runtime_error("the WebP library does not fit");
    const TOwner<WebPPicture> picture_owner(&picture);
    WebPMemoryWriter encoded;
    WebPMemoryWriterInit(&encoded);
    const TOwner<WebPMemoryWriter> encoded_owner(&encoded);
    SWatch watch = {output, nullptr};
    picture.use_argb = 1;
    picture.width = rows.Width();
    picture.height = rows.Height();
    picture.writer = &WebPMemoryWrite;
    picture.custom_ptr = &encoded;
    picture.progress_hook = &OnProgress;
    picture.user_data = &watch;
    if (!WebPPictureAlloc(&picture)) throw std::bad_alloc();
    FillPicture(rows, picture);
    const bool is_encoded = WebPEncode(&config, &picture) != 0;
    if (watch.stopped) std::rethrow_exception(watch.stopped);
    if (!is_encoded) Fail(picture.error_code);
    WebPPictureFree(&picture);  // its memory is of use to what follows
    WriteAssembled(encoded, chunks, output.file);
}

}  // namespace imagefile
