#include "host/core/CString.h"

#include <utf8.h>

#include <iterator>

static_assert(sizeof(wchar_t) == 4, "a wide character holds a whole code point here");

CString FromUtf8(std::string_view text) {
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    std::wstring wide;
    utf8::utf8to32(valid.begin(), valid.end(), std::back_inserter(wide));
    return wide;
}

std::string ToUtf8(const CString& text) {
    std::string narrow;
    for (const wchar_t c : text.Text()) {
        const auto code = static_cast<char32_t>(c);
        const bool valid = code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
        utf8::append(valid ? code : U'\uFFFD', std::back_inserter(narrow));
    }
    return narrow;
}
