#include "app/imagefile/CImageFileError.h"

#include <system_error>

namespace imagefile {

CImageFileError::CImageFileError(ENFault fault, const std::filesystem::path& file,
                                 const std::string& what, std::string hint)
    : fault_(fault), message_(DisplayName(file) + ": " + what), hint_(std::move(hint)) {}

std::string SystemText(int error) { return std::generic_category().message(error); }

std::string DisplayName(const std::filesystem::path& file) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string shown;
    for (const char c : file.native()) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        } else {
            shown += c;
        }
    }
    return shown;
}

}  // namespace imagefile
