#include "app/imagefile/WriteWebp.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <memory>

namespace imagefile {

namespace {

using CStops = std::function<bool(int)>;

// The effort of the lossless encoder, 0 to 9: above this, files get hardly smaller for the time.
constexpr int kEffort = 1;

struct SFree {
    void operator()(WebPPicture* picture) const { WebPPictureFree(picture); }
    void operator()(WebPMemoryWriter* writer) const { WebPMemoryWriterClear(writer); }
    void operator()(WebPMux* mux) const { WebPMuxDelete(mux); }
    void operator()(WebPData* data) const { WebPDataClear(data); }
};
template <class Object>
using TOwner = std::unique_ptr<Object, SFree>;

int OnProgress(int percent, const WebPPicture* picture) {
    return !(*static_cast<const CStops*>(picture->user_data))(percent);
}

std::string ErrorText(WebPEncodingError code) {
    switch (code) {
        case VP8_ENC_ERROR_OUT_OF_MEMORY:
        case VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY:
            return "out of memory";
        case VP8_ENC_ERROR_FILE_TOO_BIG:
            return "larger than the 4 GB that WebP can hold";
        default:
            return "WebP encoder error " + std::to_string(static_cast<int>(code));
    }
}

std::vector<std::uint8_t> Assemble(std::span<const std::uint8_t> picture,
                                   const std::vector<SChunk>& chunks) {
    const TOwner<WebPMux> mux(WebPMuxNew());
    const WebPData image = {picture.data(), picture.size()};
    bool is_ok = mux && WebPMuxSetImage(mux.get(), &image, 0) == WEBP_MUX_OK;
    for (const SChunk& chunk : chunks) {
        const WebPData data = {chunk.data.data(), chunk.data.size()};
        is_ok = is_ok && WebPMuxSetChunk(mux.get(), chunk.type.c_str(), &data, 0) == WEBP_MUX_OK;
    }
    WebPData file = {};
    const TOwner<WebPData> owner(&file);
    if (!is_ok || WebPMuxAssemble(mux.get(), &file) != WEBP_MUX_OK) return {};
    return {file.bytes, file.bytes + file.size};
}

}  // namespace

std::vector<std::uint8_t> EncodeWebp(int width, int height, const std::vector<SChunk>& chunks,
                                     const std::function<void(int, std::uint32_t*)>& fill_row,
                                     const CStops& stops, std::string& error) {
    WebPConfig config;
    WebPPicture picture;
    if (!WebPConfigInit(&config) || !WebPConfigLosslessPreset(&config, kEffort) ||
        !WebPPictureInit(&picture)) {
        error = "the WebP library does not fit";
        return {};
    }
    config.exact = 1;
    config.thread_level = 1;
    const TOwner<WebPPicture> picture_owner(&picture);
    WebPMemoryWriter written;
    WebPMemoryWriterInit(&written);
    const TOwner<WebPMemoryWriter> written_owner(&written);
    picture.use_argb = 1;
    picture.width = width;
    picture.height = height;
    picture.writer = &WebPMemoryWrite;
    picture.custom_ptr = &written;
    picture.progress_hook = &OnProgress;
    picture.user_data = const_cast<CStops*>(&stops);
    if (WebPPictureAlloc(&picture)) {
        for (int y = 0; y < height; ++y) {
            fill_row(y, picture.argb + static_cast<std::ptrdiff_t>(y) * picture.argb_stride);
        }
        if (WebPEncode(&config, &picture)) {
            std::vector<std::uint8_t> file = Assemble({written.mem, written.size}, chunks);
            if (file.empty()) error = ErrorText(VP8_ENC_ERROR_OUT_OF_MEMORY);
            return file;
        }
    }
    error = ErrorText(picture.error_code);
    return {};
}

}  // namespace imagefile
