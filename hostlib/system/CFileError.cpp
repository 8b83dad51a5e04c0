#include "hostlib/system/CFileError.h"

#include <system_error>

#include "hostlib/language/Texts.h"

namespace {

// What the system says most often, for the translators; it is looked up by what it says.
[[maybe_unused]] constexpr const char* kSystemTexts[] = {
    TrLater("No such file or directory"),
    TrLater("Permission denied"),
    TrLater("Operation not permitted"),
    TrLater("Read-only file system"),
    TrLater("No space left on device"),
    TrLater("Disk quota exceeded"),
    TrLater("File too large"),
    TrLater("File name too long"),
    TrLater("File exists"),
    TrLater("Not a directory"),
    TrLater("Is a directory"),
    TrLater("Directory not empty"),
    TrLater("Too many levels of symbolic links"),
    TrLater("Too many open files"),
    TrLater("Input/output error"),
    TrLater("Device or resource busy"),
    TrLater("Text file busy"),
    TrLater("Broken pipe"),
    TrLater("Bad file descriptor"),
    TrLater("Invalid argument"),
    TrLater("Cannot allocate memory"),
    TrLater("No such device or address"),
    TrLater("Interrupted system call"),
    TrLater("Resource temporarily unavailable"),
    TrLater("Stale file handle"),
    TrLater("Operation not supported"),
};

// The second byte of U+0080 to U+009F, which some terminals obey as well, after 0xC2.
bool IsControl(unsigned char byte, unsigned char before) {
    return byte < 0x20 || byte == 0x7f || (before == 0xc2 && byte >= 0x80 && byte < 0xa0);
}

}  // namespace

CFileError::CFileError(const std::filesystem::path& file, const std::string& what, std::string hint)
    : message_(DisplayText(file) + ": " + what), hint_(std::move(hint)) {}

std::string SystemText(int error) {
    return std::string(texts::Translation(std::generic_category().message(error)));
}

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
