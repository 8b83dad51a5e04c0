#include "app/imagefile/metadata/PngText.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace imagefile::pngtext {

namespace {

constexpr std::size_t kMaxTextBytes = 64 << 20;
constexpr std::size_t kMaxKeyword = 79;

std::string FromLatin1(std::string_view latin) {
    std::string text;
    for (const char c : latin) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xc0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3f));
        }
    }
    return text;
}

// Nothing when a character has no place in Latin-1, or the text is not UTF-8.
std::optional<std::string> ToLatin1(std::string_view text) {
    std::string latin;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            if (byte == 0) return std::nullopt;
            latin += text[i];
        } else if ((byte == 0xc2 || byte == 0xc3) && i + 1 < text.size() &&
                   (text[i + 1] & 0xc0) == 0x80) {
            latin += static_cast<char>((byte & 3) << 6 | (text[++i] & 0x3f));
        } else {
            return std::nullopt;
        }
    }
    return latin;
}

// Takes up to the next null byte, and that too; nothing when there is none.
std::optional<std::string_view> TakeString(std::string_view& bytes) {
    const std::size_t end = bytes.find('\0');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view taken = bytes.substr(0, end);
    bytes.remove_prefix(end + 1);
    return taken;
}

CBytesView AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
std::string_view AsText(CBytesView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
void Append(CBytes& to, std::string_view text) { to.insert(to.end(), text.begin(), text.end()); }

std::optional<std::string> InflateText(std::string_view bytes) {
    const auto text = Inflate(AsBytes(bytes), kMaxTextBytes);
    if (!text) return std::nullopt;
    return std::string(AsText(*text));
}

std::optional<SText> ParseInternational(std::string_view keyword, std::string_view rest) {
    if (rest.size() < 2) return std::nullopt;
    const bool is_compressed = rest[0] == 1;
    rest.remove_prefix(2);
    const auto language = TakeString(rest);
    if (!language || !TakeString(rest)) return std::nullopt;  // the keyword in that language
    const auto text = is_compressed ? InflateText(rest) : std::string(rest);
    if (!text) return std::nullopt;
    return SText{FromLatin1(keyword), std::string(*language), *text};
}

}  // namespace

bool IsText(const SChunk& chunk) {
    return chunk.type == "tEXt" || chunk.type == "zTXt" || chunk.type == "iTXt";
}

std::optional<SText> Parse(const SChunk& chunk) {
    std::string_view rest = AsText(chunk.data);
    const auto keyword = TakeString(rest);
    if (!keyword || keyword->empty() || keyword->size() > kMaxKeyword) return std::nullopt;
    if (chunk.type == "iTXt") return ParseInternational(*keyword, rest);
    if (chunk.type == "tEXt") return SText{FromLatin1(*keyword), {}, FromLatin1(rest)};
    if (rest.empty() || rest[0] != 0) return std::nullopt;
    const auto text = InflateText(rest.substr(1));
    if (!text) return std::nullopt;
    return SText{FromLatin1(*keyword), {}, FromLatin1(*text)};
}

SChunk Make(const SText& text) {
    const std::string keyword = ToLatin1(text.keyword).value_or("").substr(0, kMaxKeyword);
    SChunk chunk;
    Append(chunk.data, keyword.empty() ? kCommentKeyword : keyword);
    const auto latin = text.language.empty() ? ToLatin1(text.text) : std::nullopt;
    chunk.type = latin ? "tEXt" : "iTXt";
    chunk.data.push_back(0);
    if (!latin) {
        chunk.data.insert(chunk.data.end(), {0, 0});  // not compressed
        Append(chunk.data, text.language);
        chunk.data.insert(chunk.data.end(), {0, 0});  // no other keyword
    }
    Append(chunk.data, latin ? *latin : text.text);
    return chunk;
}

CBytes ProfileOf(const std::string& text) {
    std::string_view rest = text;
    constexpr std::string_view kSpaces = " \t\r\n";
    const auto skip = [&](bool spaces) {
        const std::size_t at = spaces ? rest.find_first_not_of(kSpaces) : rest.find('\n');
        rest.remove_prefix(std::min(at, rest.size()));
    };
    skip(true);
    skip(false);  // the name
    skip(true);
    std::size_t length = 0;
    const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), length);
    if (parsed.ec != std::errc() || length > rest.size()) return {};
    rest.remove_prefix(static_cast<std::size_t>(parsed.ptr - rest.data()));
    CBytes bytes;
    int high = -1;
    for (const char c : rest) {
        if (kSpaces.find(c) != std::string_view::npos) continue;
        std::uint8_t digit = 0;
        if (std::from_chars(&c, &c + 1, digit, 16).ec != std::errc()) return {};
        if (high >= 0) bytes.push_back(static_cast<std::uint8_t>(high << 4 | digit));
        high = high >= 0 ? -1 : digit;
    }
    return bytes.size() == length ? bytes : CBytes();
}

SChunk MakeProfile(const std::string& keyword, CBytesView bytes) {
    constexpr std::size_t kBytesInLine = 36;
    constexpr char kDigits[] = "0123456789abcdef";
    const std::string length = std::to_string(bytes.size());
    std::string text("\n");
    text.append(keyword, keyword.rfind(' ') + 1).append("\n");
    text.append(length.size() < 8 ? 8 - length.size() : 0, ' ').append(length);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % kBytesInLine == 0) text += '\n';
        text += {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 15]};
    }
    text += '\n';
    SChunk chunk{"zTXt", {}};
    Append(chunk.data, keyword);
    chunk.data.insert(chunk.data.end(), {0, 0});
    const CBytes packed = Deflate(AsBytes(text));
    chunk.data.insert(chunk.data.end(), packed.begin(), packed.end());
    return chunk;
}

std::optional<CBytes> Inflate(CBytesView bytes, std::size_t limit) {
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK) return std::nullopt;
    stream.next_in = const_cast<std::uint8_t*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    CBytes out;
    std::array<std::uint8_t, 16384> part = {};
    int state = Z_OK;
    while (state == Z_OK && out.size() <= limit) {
        stream.next_out = part.data();
        stream.avail_out = part.size();
        state = inflate(&stream, Z_NO_FLUSH);
        out.insert(out.end(), part.begin(), part.end() - stream.avail_out);
    }
    inflateEnd(&stream);
    if (state != Z_STREAM_END || out.size() > limit) return std::nullopt;
    return out;
}

CBytes Deflate(CBytesView bytes) {
    uLongf length = compressBound(static_cast<uLong>(bytes.size()));
    CBytes packed(length);
    compress2(packed.data(), &length, bytes.data(), static_cast<uLong>(bytes.size()),
              Z_DEFAULT_COMPRESSION);
    packed.resize(length);
    return packed;
}

}  // namespace imagefile::pngtext
