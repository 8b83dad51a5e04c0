#include <unistd.h>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <vector>

#include <jerror.h>
#include <jpeglib.h>

#include "app/imagefile/decode/Decoders.h"

namespace imagefile {

namespace {

// What the library says of segments and not of the pixels.
bool IsAboutSegment(int code) {
    return code == JWRN_ADOBE_XFORM || code == JWRN_JFIF_MAJOR || code == JWRN_BOGUS_ICC;
}

class CJpegDecoder final : public IDecoder {
  public:
    explicit CJpegDecoder(int descriptor) : descriptor_(descriptor), buffer_(1 << 16) {
        jpeg_.err = jpeg_std_error(&errors_);
        jpeg_.client_data = this;
        errors_.error_exit = &OnError;
        errors_.emit_message = &OnMessage;
        jpeg_create_decompress(&jpeg_);
        source_.init_source = [](j_decompress_ptr) {};
        source_.term_source = [](j_decompress_ptr) {};
        source_.fill_input_buffer = &OnFill;
        source_.skip_input_data = &OnSkip;
        source_.resync_to_restart = &jpeg_resync_to_restart;
        jpeg_.src = &source_;
    }
    ~CJpegDecoder() override { jpeg_destroy_decompress(&jpeg_); }
    CJpegDecoder(const CJpegDecoder&) = delete;
    CJpegDecoder& operator=(const CJpegDecoder&) = delete;

    bool Open() {
        if (setjmp(jump_) != 0) return false;
        jpeg_read_header(&jpeg_, TRUE);
        const bool is_grey = jpeg_.jpeg_color_space == JCS_GRAYSCALE;
        const bool is_colour =
            jpeg_.jpeg_color_space == JCS_YCbCr || jpeg_.jpeg_color_space == JCS_RGB;
        jpeg_.out_color_space = is_grey ? JCS_GRAYSCALE : is_colour ? JCS_RGB : JCS_CMYK;
        format_ =
            is_grey || is_colour ? CNPixelFormat::Of(is_grey ? 1 : 3, false) : CNPixelFormat();
        return true;
    }

    CSize Size() const override {
        return {static_cast<int>(jpeg_.image_width), static_cast<int>(jpeg_.image_height)};
    }
    CNPixelFormat Format() const override { return format_; }
    std::string Strangeness() const override {
        return format_.IsKnown() ? std::string() : "CMYK colour";
    }

    bool NextRow(void* row) override {
        if (setjmp(jump_) != 0) return false;
        if (!started_) jpeg_start_decompress(&jpeg_);
        started_ = true;
        auto* to = static_cast<JSAMPROW>(row);
        jpeg_read_scanlines(&jpeg_, &to, 1);
        return true;
    }
    bool Finish() override {
        if (setjmp(jump_) != 0) return false;
        jpeg_finish_decompress(&jpeg_);
        return true;
    }

  private:
    static CJpegDecoder& Self(void* client) { return *static_cast<CJpegDecoder*>(client); }

    [[noreturn]] static void OnError(j_common_ptr jpeg) {
        std::array<char, JMSG_LENGTH_MAX> text = {};
        jpeg->err->format_message(jpeg, text.data());
        CJpegDecoder& self = Self(jpeg->client_data);
        self.Fail(text.data());
        std::longjmp(self.jump_, 1);
    }
    static void OnMessage(j_common_ptr jpeg, int level) {
        if (level >= 0) return;
        std::array<char, JMSG_LENGTH_MAX> text = {};
        jpeg->err->format_message(jpeg, text.data());
        Self(jpeg->client_data).Complain({text.data(), !IsAboutSegment(jpeg->err->msg_code)});
    }
    static boolean OnFill(j_decompress_ptr jpeg) {
        CJpegDecoder& self = Self(jpeg->client_data);
        const ssize_t got =
            pread(self.descriptor_, self.buffer_.data(), self.buffer_.size(), self.at_);
        if (got <= 0) {
            // The library asks for an end marker to be made up.
            WARNMS(jpeg, JWRN_JPEG_EOF);
            self.buffer_[0] = 0xff;
            self.buffer_[1] = JPEG_EOI;
        }
        self.at_ += got > 0 ? got : 0;
        self.source_.next_input_byte = self.buffer_.data();
        self.source_.bytes_in_buffer = got > 0 ? static_cast<std::size_t>(got) : 2;
        return TRUE;
    }
    static void OnSkip(j_decompress_ptr jpeg, long count) {
        jpeg_source_mgr& source = Self(jpeg->client_data).source_;
        while (count > static_cast<long>(source.bytes_in_buffer)) {
            count -= static_cast<long>(source.bytes_in_buffer);
            OnFill(jpeg);
        }
        source.next_input_byte += count;
        source.bytes_in_buffer -= static_cast<std::size_t>(count);
    }

    int descriptor_;
    off_t at_ = 0;
    std::vector<JOCTET> buffer_;
    jpeg_decompress_struct jpeg_ = {};
    jpeg_error_mgr errors_ = {};
    jpeg_source_mgr source_ = {};
    std::jmp_buf jump_ = {};
    CNPixelFormat format_;
    bool started_ = false;
};

}  // namespace

CDecoder OpenJpegDecoder(int descriptor, std::string& trouble) {
    auto decoder = std::make_unique<CJpegDecoder>(descriptor);
    const bool is_open = decoder->Open();
    return Opened(std::move(decoder), is_open, trouble);
}

}  // namespace imagefile
