#include "app/cli/batch/OutputTemplate.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>

#include "app/cli/CliError.h"
#include "hostlib/language/Texts.h"

namespace {

using Expansion = std::function<std::string(const SOutputFields&, int digits)>;

std::string Padded(std::size_t number, int digits) { return fmt::format("{:0{}}", number, digits); }

const std::map<std::string, Expansion>& Fields() {
    static const std::map<std::string, Expansion> kFields = {
        // Never empty, so that "{dir}/name" does not begin at the root.
        {"dir", [](const auto& f, int) { return f.dir.empty() ? "." : f.dir; }},
        {"name", [](const auto& f, int) { return f.name; }},
        {"ext", [](const auto& f, int) { return f.ext; }},
        {"effect", [](const auto& f, int) { return f.effect; }},
        {"index", [](const auto& f, int digits) { return Padded(f.index, digits); }},
        {"page", [](const auto& f, int digits) {
             return Padded(static_cast<std::size_t>(f.page), digits);
         }}};
    return kFields;
}

[[noreturn]] void Refuse(const std::string& text, const std::string& what) {
    throw CCliError(EExit::Usage, fmt::format("-o {}: {}", text, what),
                    Tr("a template has {dir}, {name}, {ext}, {effect}, {index} and {page}; doubled "
                       "braces are braces"));
}

}  // namespace

COutputTemplate::SPiece COutputTemplate::Field(const std::string& inside) const {
    const std::size_t colon = inside.find(':');
    SPiece piece{.text = inside.substr(0, colon), .is_field = true, .digits = 0};
    if (!Fields().contains(piece.text))
        Refuse(text_, Tr("there is no field {}", '{' + inside + '}'));
    if (colon == std::string::npos) return piece;
    const std::string digits = inside.substr(colon + 1);
    const bool counts = piece.text == "index" || piece.text == "page";
    if (!counts || digits.size() != 1 || digits[0] < '1' || digits[0] > '9') {
        Refuse(text_, Tr("{} has no such width", '{' + inside + '}'));
    }
    piece.digits = digits[0] - '0';
    return piece;
}

COutputTemplate::COutputTemplate(const std::string& text) : text_(text) {
    std::string plain;
    const auto flush = [&] {
        if (!plain.empty()) pieces_.push_back({.text = std::exchange(plain, {})});
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool is_brace = text[i] == '{' || text[i] == '}';
        if (is_brace && i + 1 < text.size() && text[i + 1] == text[i]) {
            plain += text[i++];
        } else if (text[i] == '{') {
            const std::size_t end = text.find('}', i);
            if (end == std::string::npos) Refuse(text, Tr("an opening brace is not closed"));
            flush();
            pieces_.push_back(Field(text.substr(i + 1, end - i - 1)));
            i = end;
        } else if (text[i] == '}') {
            Refuse(text, Tr("a closing brace was not opened"));
        } else {
            plain += text[i];
        }
    }
    flush();
    const auto is_field = [](const SPiece& piece) { return piece.is_field; };
    if (std::none_of(pieces_.begin(), pieces_.end(), is_field)) {
        Refuse(text, Tr("one name for all pictures"));
    }
}

std::string COutputTemplate::Expand(const SOutputFields& fields) const {
    std::string name;
    for (const SPiece& piece : pieces_) {
        name += piece.is_field ? Fields().at(piece.text)(fields, piece.digits) : piece.text;
    }
    return std::filesystem::path(name).lexically_normal();
}

std::filesystem::path COutputTemplate::Folder() const {
    if (pieces_.empty() || pieces_[0].is_field) return {};
    const std::string& plain = pieces_[0].text;
    const std::size_t slash = plain.rfind('/');
    return slash == std::string::npos ? std::string() : plain.substr(0, slash + 1);
}
