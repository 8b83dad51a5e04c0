#include "hostlib/parameters/NearestName.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <numeric>

#include "hostlib/language/Texts.h"

namespace {

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// The edit distance of Levenshtein: insertions, deletions and replacements of single letters.
std::size_t Distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (Lower(a[i]) == Lower(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string NearestName(const std::string& wanted, const std::vector<std::string>& names) {
    std::string nearest;
    std::size_t best = std::numeric_limits<std::size_t>::max();
    for (const std::string& name : names) {
        const std::size_t distance = Distance(wanted, name);
        const bool near = distance <= std::max(name.size() / 2, std::size_t{1});
        if (near && distance < best) {
            best = distance;
            nearest = name;
        }
    }
    return nearest;
}

std::string DidYouMean(const std::string& wanted, const std::vector<std::string>& names) {
    const std::string nearest = NearestName(wanted, names);
    return nearest.empty() ? std::string() : Tr("did you mean \"{}\"?", nearest);
}

bool SameName(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string LooseName(const std::string& name) {
    constexpr unsigned char kLatin = 0xc3;  // the first byte of U+00C0 to U+00FF
    std::string loose;
    bool is_latin = false;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (is_latin && byte >= 0x80 && byte <= 0x9e && byte != 0x97) {  // U+00C0 to U+00DE
            loose += static_cast<char>(byte + 0x20);
        } else if (byte >= 0x80) {
            loose += c;
        } else if (std::isalnum(byte)) {
            loose += Lower(c);
        }
        is_latin = byte == kLatin;
    }
    return loose;
}
