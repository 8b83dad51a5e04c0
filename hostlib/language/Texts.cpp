#include "hostlib/language/Texts.h"

#include <fmt/args.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <vector>

#include "hostlib/system/StrictJson.h"

namespace texts {
namespace {

using Catalogue = std::map<std::string, std::string, std::less<>>;

constexpr std::uintmax_t kLargest = 16 << 20;

std::atomic<const Catalogue*> g_in_use = nullptr;  // null: English

// A catalogue stays for good: views of its texts may be anywhere.
void Keep(std::unique_ptr<const Catalogue> catalogue) {
    static std::mutex mutex;
    static std::vector<std::unique_ptr<const Catalogue>> all;
    const std::lock_guard lock(mutex);
    g_in_use = all.emplace_back(std::move(catalogue)).get();
}

}  // namespace

std::string Use(const std::filesystem::path& data, const std::string& code) {
    g_in_use = nullptr;
    if (code == "EN") return {};
    const std::filesystem::path file = data / "Languages" / code / "messages.json";
    try {
        auto catalogue = std::make_unique<Catalogue>();
        const nlohmann::ordered_json json = ReadStrictJson(file, kLargest);
        for (const auto& [english, text] : json.items()) {
            (*catalogue)[english] = text.get<std::string>();
        }
        Keep(std::move(catalogue));
        return {};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return fmt::format("{}: the messages cannot be used: {}", file.string(), error.what());
    }
}

std::string_view Translation(std::string_view english) {
    const Catalogue* catalogue = g_in_use;
    if (!catalogue) return english;
    const auto found = catalogue->find(english);
    return found == catalogue->end() ? english : found->second;
}

std::string Format(std::string_view english, fmt::format_args values) {
    try {
        const std::string_view text = Translation(english);
        return fmt::vformat({text.data(), text.size()}, values);
    } catch (const fmt::format_error&) {
        return fmt::vformat({english.data(), english.size()}, values);
    }
}

std::string OfModule(const std::string& english) {
    std::string key;
    fmt::dynamic_format_arg_store<fmt::format_context> numbers;
    for (std::size_t i = 0; i < english.size();) {
        const std::size_t end =
            std::min(english.find_first_not_of("0123456789", i), english.size());
        if (end > i) {
            numbers.push_back(english.substr(i, end - i));
            key += "{}";
            i = end;
        } else {
            key += english[i++];
        }
    }
    return Translation(key) == key ? english : Format(key, numbers);
}

}  // namespace texts
