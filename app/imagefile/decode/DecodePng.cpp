#include <png.h>
#include <unistd.h>

#include <bit>
#include <csetjmp>
#include <cstring>
#include <vector>

#include "app/imagefile/decode/Decoders.h"

namespace imagefile {

namespace {

class CPngDecoder final : public IDecoder {
  public:
    explicit CPngDecoder(int descriptor) : descriptor_(descriptor) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &OnError, &OnWarning);
        if (png_) info_ = png_create_info_struct(png_);
    }
    ~CPngDecoder() override { png_destroy_read_struct(&png_, &info_, nullptr); }
    CPngDecoder(const CPngDecoder&) = delete;
    CPngDecoder& operator=(const CPngDecoder&) = delete;

    bool Open() {
        if (!info_ || setjmp(png_jmpbuf(png_)) != 0) return false;
        png_set_read_fn(png_, this, &OnRead);
        // What is not about the pixels is read elsewhere.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_read_info(png_, info_);
        png_set_expand(png_);
        if (std::endian::native == std::endian::little) png_set_swap(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        return true;
    }

    CSize Size() const override {
        return {static_cast<int>(png_get_image_width(png_, info_)),
                static_cast<int>(png_get_image_height(png_, info_))};
    }
    CNPixelFormat Format() const override {
        return CNPixelFormat::Of(png_get_channels(png_, info_),
                                 png_get_bit_depth(png_, info_) == 16);
    }
    bool NextRow(void* row) override {
        if (passes_ > 1) return NextOfInterlaced(row);
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        png_read_row(png_, static_cast<png_bytep>(row), nullptr);
        return true;
    }
    bool Finish() override {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        png_read_end(png_, nullptr);
        return true;
    }

  private:
    // The last pass completes the first row.
    bool NextOfInterlaced(void* row) {
        const std::size_t bytes = png_get_rowbytes(png_, info_);
        if (next_ == 0) whole_.resize(bytes * png_get_image_height(png_, info_));
        if (next_ == 0 && !ReadPasses(bytes)) return false;
        std::memcpy(row, &whole_[bytes * next_++], bytes);
        return true;
    }
    bool ReadPasses(std::size_t bytes) {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        const png_uint_32 height = png_get_image_height(png_, info_);
        for (int pass = 0; pass < passes_; ++pass) {
            for (png_uint_32 y = 0; y < height; ++y) {
                png_read_row(png_, &whole_[bytes * y], nullptr);
            }
        }
        return true;
    }

    static void OnRead(png_structp png, png_bytep to, std::size_t length) {
        auto* self = static_cast<CPngDecoder*>(png_get_io_ptr(png));
        while (length > 0) {
            const ssize_t got = pread(self->descriptor_, to, length, self->at_);
            if (got <= 0) png_error(png, "the file ends too early");
            to += got;
            length -= static_cast<std::size_t>(got);
            self->at_ += got;
        }
    }
    [[noreturn]] static void OnError(png_structp png, png_const_charp text) {
        static_cast<CPngDecoder*>(png_get_error_ptr(png))->Fail(text);
        png_longjmp(png, 1);
    }
    static void OnWarning(png_structp png, png_const_charp text) {
        static_cast<CPngDecoder*>(png_get_error_ptr(png))->Complain({text});
    }

    int descriptor_;
    off_t at_ = 0;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    int passes_ = 1;
    std::size_t next_ = 0;
    std::vector<std::uint8_t> whole_;
};

}  // namespace

CDecoder OpenPngDecoder(int descriptor, std::string& trouble) {
    auto decoder = std::make_unique<CPngDecoder>(descriptor);
    const bool is_open = decoder->Open();
    return Opened(std::move(decoder), is_open, trouble);
}

}  // namespace imagefile
