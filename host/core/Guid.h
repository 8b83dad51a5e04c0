#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

// A 16-byte identifier in the standard layout (the first three groups little-endian in memory).
struct GUID {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    friend constexpr auto operator<=>(const GUID&, const GUID&) = default;
};
static_assert(sizeof(GUID) == 16);

namespace guid_detail {
constexpr std::uint32_t HexDigits(std::string_view text) {
    std::uint32_t value = 0;
    for (const char c : text) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : throw "a GUID is written in upper-case hex";
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return value;
}
}  // namespace guid_detail

// The GUID of its text form, "4AEE87D5-19F6-4815-AA5E-F23631522E33"; checked while compiling.
consteval GUID MakeGuid(std::string_view text) {
    if (text.size() != 36) throw "a GUID has 36 characters";
    GUID guid{guid_detail::HexDigits(text.substr(0, 8)),
              static_cast<std::uint16_t>(guid_detail::HexDigits(text.substr(9, 4))),
              static_cast<std::uint16_t>(guid_detail::HexDigits(text.substr(14, 4))),
              {}};
    constexpr std::array<std::size_t, 8> kAt{19, 21, 24, 26, 28, 30, 32, 34};
    for (std::size_t i = 0; i < kAt.size(); ++i) {
        guid.data4[i] = static_cast<std::uint8_t>(guid_detail::HexDigits(text.substr(kAt[i], 2)));
    }
    return guid;
}

// The text form that MakeGuid reads.
inline std::string ToText(const GUID& guid) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    const auto append = [&](std::uint32_t value, int digits) {
        for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
            text += kDigits[(value >> shift) & 15U];
        }
    };
    append(guid.data1, 8);
    text += '-';
    append(guid.data2, 4);
    text += '-';
    append(guid.data3, 4);
    for (std::size_t i = 0; i < guid.data4.size(); ++i) {
        if (i == 0 || i == 2) text += '-';
        append(guid.data4[i], 2);
    }
    return text;
}
