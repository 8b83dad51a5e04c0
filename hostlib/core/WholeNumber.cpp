#include "hostlib/core/WholeNumber.h"

#include <charconv>
#include <limits>

std::optional<std::int64_t> WholeNumber(std::string_view text) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    std::int64_t value = 0;
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value);
    if (text.empty() || end != last) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        return text.front() == '-' ? Limits::min() : Limits::max();
    }
    return value;
}

std::optional<std::pair<int, int>> NumberPair(std::string_view text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return std::nullopt;
    const auto first = WholeNumber(text.substr(0, at));
    const auto second = WholeNumber(text.substr(at + 1));
    if (!first || !second || !std::in_range<int>(*first) || !std::in_range<int>(*second)) {
        return std::nullopt;
    }
    return std::pair(static_cast<int>(*first), static_cast<int>(*second));
}
