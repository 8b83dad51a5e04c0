#include "app/cli/Terminal.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "hostlib/core/WholeNumber.h"

namespace {
bool BeginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80; }
}  // namespace

int TerminalColumns(int descriptor) {
    winsize size = {};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    constexpr std::int64_t kUsual = 80, kMost = 1000;
    const char* columns = std::getenv("COLUMNS");
    const auto number = columns ? WholeNumber(columns) : std::nullopt;
    return static_cast<int>(number && *number > 0 ? std::min(*number, kMost) : kUsual);
}

int ColumnsOf(std::string_view text) {
    return static_cast<int>(std::count_if(text.begin(), text.end(), &BeginsCharacter));
}

std::string Shortened(const std::string& text, int columns) {
    if (ColumnsOf(text) <= columns) return text;
    if (columns < 1) return {};
    std::size_t end = 0;
    for (int left = columns; end < text.size(); ++end) {
        if (BeginsCharacter(text[end]) && --left == 0) break;
    }
    return text.substr(0, end) + "…";
}

std::string Wrapped(const std::string& text, int columns, int indent, int at) {
    std::string lines;
    std::istringstream words(text);
    bool is_first = true;
    for (std::string word; words >> word;) {
        const int width = ColumnsOf(word);
        if (!is_first && at + 1 + width > columns) {
            lines += '\n' + std::string(static_cast<std::size_t>(indent), ' ');
            at = indent;
        } else if (!is_first) {
            lines += ' ';
            ++at;
        }
        lines += word;
        at += width;
        is_first = false;
    }
    return lines;
}
