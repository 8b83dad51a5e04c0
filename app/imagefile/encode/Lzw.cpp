#include "app/imagefile/encode/Lzw.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace imagefile {

namespace {

constexpr unsigned kClear = 256, kEnd = 257, kFirst = 258;
constexpr unsigned kLast = 4094;  // the table is begun anew before its last code
constexpr int kShortest = 9;

// Codes on their way into bytes.
class CCodeWriter {
  public:
    // There is room for `bytes`, all that will ever be written.
    CCodeWriter(std::vector<std::uint8_t>& out, std::size_t bytes) : out_(out) {
        out.resize(bytes);
    }

    void Put(unsigned code, int bits) {
        pending_ = pending_ << bits | code;
        held_ += bits;
        if (held_ < 32) return;
        held_ -= 32;
        PutWord(static_cast<std::uint32_t>(pending_ >> held_));
    }
    void Finish() {
        const std::uint64_t rest = held_ == 0 ? 0 : pending_ << (64 - held_);
        for (int i = 0; i < held_; i += 8) {
            out_[at_++] = static_cast<std::uint8_t>(rest >> (56 - i));
        }
        out_.resize(at_);
    }

  private:
    void PutWord(std::uint32_t word) {
        const std::array<std::uint8_t, 4> bytes = {
            static_cast<std::uint8_t>(word >> 24), static_cast<std::uint8_t>(word >> 16),
            static_cast<std::uint8_t>(word >> 8), static_cast<std::uint8_t>(word)};
        std::memcpy(&out_[at_], bytes.data(), bytes.size());
        at_ += bytes.size();
    }

    std::vector<std::uint8_t>& out_;
    std::size_t at_ = 0;
    std::uint64_t pending_ = 0;
    int held_ = 0;
};

// Which code stands for a known string and the byte after it. An entry holds all three; 0 is none,
// since no string has the code 0 but a single byte.
class CTable {
  public:
    void Clear() { entries_.fill(0); }
    // The code of `string` followed by `byte`; when there is none, it becomes `fresh`, and the
    // answer is 0.
    unsigned FindOrAdd(unsigned string, std::uint8_t byte, unsigned fresh) {
        const std::uint32_t key = string << 8 | byte;
        std::uint32_t at = key * 0x9E3779B1U >> (32 - kBits);
        while (entries_[at] != 0) {
            if (entries_[at] >> 12 == key) return entries_[at] & 0xfffU;
            at = (at + 1) & (kSize - 1);
        }
        entries_[at] = key << 12 | fresh;
        return 0;
    }

  private:
    static constexpr int kBits = 13;
    static constexpr std::uint32_t kSize = 1U << kBits;
    std::array<std::uint32_t, kSize> entries_ = {};
};

}  // namespace

void LzwEncode(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& strip) {
    static thread_local CTable table;
    table.Clear();
    // A code of 12 bits for every byte, and those that begin and end.
    CCodeWriter out(strip, bytes.size() + bytes.size() / 2 + bytes.size() / 1024 + 64);
    unsigned next = kFirst;
    int bits = kShortest;
    // A new string has got the next code: the codes grow one early, as all readers expect.
    const auto count_up = [&] {
        if (++next == kLast) {
            out.Put(kClear, bits);
            table.Clear();
            next = kFirst;
            bits = kShortest;
        } else if (next > (1U << bits) - 1) {
            ++bits;
        }
    };
    out.Put(kClear, bits);
    if (!bytes.empty()) {
        unsigned string = bytes[0];
        for (const std::uint8_t byte : bytes.subspan(1)) {
            if (const unsigned longer = table.FindOrAdd(string, byte, next)) {
                string = longer;
                continue;
            }
            out.Put(string, bits);
            string = byte;
            count_up();
        }
        out.Put(string, bits);
        count_up();
    }
    out.Put(kEnd, bits);
    out.Finish();
}

}  // namespace imagefile
