#include "app/imagefile/encode/Deflate.h"

#include <zlib.h>

#include <new>
#include <stdexcept>

namespace imagefile {

namespace {

// What is compressed never grows by more than this: a deflate stream may store its input.
std::size_t Bound(std::size_t bytes) { return bytes + bytes / 1000 + 1024; }

// By zlib, although others are faster: the fast levels of ISA-L write, once in some hundred
// pictures, what depends on where in memory their state lies, and the same picture is to be the
// same file.
std::size_t Deflate(std::span<const std::uint8_t> bytes, int level, bool is_last,
                    std::span<std::uint8_t> out) {
    z_stream stream = {};
    constexpr int kRawWindow = -15, kMemory = 9;
    if (deflateInit2(&stream, level, Z_DEFLATED, kRawWindow, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    stream.next_in = const_cast<std::uint8_t*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    const int result = deflate(&stream, is_last ? Z_FINISH : Z_FULL_FLUSH);
    const bool is_done = stream.avail_in == 0 && result == (is_last ? Z_STREAM_END : Z_OK);
    deflateEnd(&stream);
    if (!is_done) throw std::runtime_error("deflate fails");
    return stream.total_out;
}

}  // namespace

void AppendDeflated(std::span<const std::uint8_t> bytes, int level, bool is_last,
                    std::vector<std::uint8_t>& out) {
    const std::size_t before = out.size();
    out.resize(before + Bound(bytes.size()));
    out.resize(before + Deflate(bytes, level, is_last, std::span(out).subspan(before)));
}

void AppendZlibStream(std::span<const std::uint8_t> bytes, int level,
                      std::vector<std::uint8_t>& out) {
    out.insert(out.end(), {0x78, 0x01});
    AppendDeflated(bytes, level, true, out);
    const std::uint32_t sum = Adler32(bytes);
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<std::uint8_t>(sum >> shift));
    }
}

std::uint32_t Adler32(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint32_t>(adler32_z(1, bytes.data(), bytes.size()));
}

std::uint32_t JoinAdler32(std::uint32_t first, std::uint32_t second, std::size_t length) {
    return static_cast<std::uint32_t>(adler32_combine(first, second, static_cast<z_off_t>(length)));
}

std::uint32_t Crc32(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint32_t>(crc32_z(0, bytes.data(), bytes.size()));
}

}  // namespace imagefile
