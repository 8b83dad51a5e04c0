#include "hostlib/system/StrictJson.h"

#include <fmt/format.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <vector>

#include "hostlib/language/Texts.h"

namespace {

using nlohmann::ordered_json;

constexpr int kDeepest = 32;

// Watches the parser: the names of the objects that are open.
class CGuard {
  public:
    bool operator()(int depth, ordered_json::parse_event_t event, const ordered_json& value) {
        using Event = ordered_json::parse_event_t;
        if (event == Event::object_start || event == Event::array_start) {
            if (depth >= kDeepest) {
                throw std::runtime_error(Tr("nested deeper than {} levels", kDeepest));
            }
            names_.emplace_back();
        } else if (event == Event::object_end || event == Event::array_end) {
            names_.pop_back();
        } else if (event == Event::key) {
            const auto& name = value.get_ref<const std::string&>();
            if (!names_.back().insert(name).second) {
                throw std::runtime_error(Tr("the name \"{}\" comes twice", name));
            }
        }
        return true;
    }

  private:
    std::vector<std::set<std::string>> names_;
};

}  // namespace

ordered_json ParseStrictJson(std::string_view text) {
    // The parser takes a null byte for the end of the text.
    if (text.find('\0') != std::string_view::npos) throw std::runtime_error(Tr("not valid JSON"));
    CGuard guard;
    const ordered_json::parser_callback_t watch = [&](int depth, auto event, ordered_json& value) {
        return guard(depth, event, value);
    };
    try {
        return ordered_json::parse(text, watch);
    } catch (const ordered_json::parse_error& error) {
        throw std::runtime_error(Tr("not valid JSON at byte {}", error.byte));
    } catch (const ordered_json::exception&) {
        throw std::runtime_error(Tr("not valid JSON"));
    }
}

ordered_json ReadStrictJson(const std::filesystem::path& file, std::uintmax_t largest) {
    std::error_code none;
    // A named pipe could be waited for without end; one that a shell has handed over is open.
    const auto kind = std::filesystem::status(file, none).type();
    const bool pipe =
        kind == std::filesystem::file_type::fifo && file.native().starts_with("/dev/");
    if (!pipe && kind != std::filesystem::file_type::regular) {
        throw std::runtime_error(Tr("no such file"));
    }
    std::ifstream in(file, std::ios::binary);
    const std::uintmax_t size = pipe ? largest : std::filesystem::file_size(file, none);
    std::string text(std::min(size, largest) + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    if (!in.is_open() || in.bad()) throw std::runtime_error(Tr("cannot be read"));
    if (text.size() > largest) {
        throw std::runtime_error(Tr("larger than {} bytes", largest));
    }
    return ParseStrictJson(text);
}
