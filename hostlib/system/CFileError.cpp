#include "hostlib/system/CFileError.h"

#include <system_error>

namespace {

// The second byte of U+0080 to U+009F, which some terminals obey as well, after 0xC2.
bool IsControl(unsigned char byte, unsigned char before) {
    return byte < 0x20 || byte == 0x7f || (before == 0xc2 && byte >= 0x80 && byte < 0xa0);
}

}  // namespace

CFileError::CFileError(const std::filesystem::path& file, const std::string& what, std::string hint)
    : message_(DisplayText(file) + ": " + what), hint_(std::move(hint)) {}

std::string SystemText(int error) { return std::generic_category().message(error); }

std::string DisplayText(const std::string& text) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string shown;
    unsigned char before = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsControl(byte, before)) {
            shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        } else {
            shown += c;
        }
        before = byte;
    }
    return shown;
}
