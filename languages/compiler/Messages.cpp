#include "Messages.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>

namespace {

// What stands between braces; an empty one is numbered by its place, as it is when it is filled.
std::multiset<std::string> Placeholders(const std::string& text) {
    std::multiset<std::string> found;
    int next = 0;
    for (std::size_t open = text.find('{'); open != std::string::npos;
         open = text.find('{', open + 1)) {
        const std::size_t close = text.find('}', open);
        if (close == std::string::npos) break;
        std::string inside = text.substr(open + 1, close - open - 1);
        if (inside.empty() || inside[0] == ':') inside.insert(0, std::to_string(next++));
        found.insert(inside);
    }
    return found;
}

class CPoReader {
  public:
    explicit CPoReader(const std::filesystem::path& file) : file_(file), in_(file) {
        if (!in_) throw std::runtime_error(file.string() + ": cannot be read");
    }

    nlohmann::json Read() {
        for (std::string line; std::getline(in_, line);) {
            ++line_;
            if (line.starts_with("#,") && line.find("fuzzy") != std::string::npos) {
                Close();
                is_fuzzy_ = true;
            } else if (line.starts_with('#') || line.empty()) {
                continue;
            } else if (line.starts_with("msgid ")) {
                Close();
                has_entry_ = true;
                (current_ = &id_)->append(Unquoted(line.substr(6)));
            } else if (line.starts_with("msgstr ")) {
                (current_ = &text_)->append(Unquoted(line.substr(7)));
            } else if (line.starts_with('"') && current_) {
                current_->append(Unquoted(line));
            } else {
                Fail("expected msgid, msgstr or a text in quotes");
            }
        }
        Close();
        return messages_;
    }

  private:
    [[noreturn]] void Fail(const std::string& what) const {
        throw std::runtime_error(file_.string() + ":" + std::to_string(line_) + ": " + what);
    }

    std::string Unquoted(const std::string& quoted) const {
        if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') {
            Fail("a text stands in quotes");
        }
        std::string plain;
        for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
            if (quoted[i] != '\\') {
                plain += quoted[i];
                continue;
            }
            const char next = quoted[++i];
            if (next != 'n' && next != '"' && next != '\\') Fail("unknown escape");
            plain += next == 'n' ? '\n' : next;
        }
        return plain;
    }

    // The entry that was read is complete. The one without a text is the file's heading.
    void Close() {
        if (!has_entry_) return;
        if (!is_fuzzy_ && !id_.empty() && !text_.empty()) {
            if (messages_.contains(id_)) Fail("the text before stands twice");
            if (Placeholders(id_) != Placeholders(text_)) {
                Fail("the translation before has other placeholders than its text");
            }
            messages_[id_] = text_;
        }
        id_.clear();
        text_.clear();
        current_ = nullptr;
        is_fuzzy_ = has_entry_ = false;
    }

    std::filesystem::path file_;
    std::ifstream in_;
    int line_ = 0;
    std::string id_, text_;
    std::string* current_ = nullptr;
    bool is_fuzzy_ = false, has_entry_ = false;
    nlohmann::json messages_ = nlohmann::json::object();
};

}  // namespace

nlohmann::json ReadMessages(const std::filesystem::path& file) { return CPoReader(file).Read(); }
