#pragma once

#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "host/core/HostApi.h"

// Messages for people in the language in use. The English text stands in the code and is its own
// key; a language's messages.po says what it reads there, and a text that a language lacks is shown
// in English. Texts may be asked for on any thread.
namespace texts {

// Takes the messages of a language, by its code, from now on in the whole process; until the first
// call they are English. Answers what is wrong with the language's file, which is English then;
// else empty.
HOST_API std::string Use(const std::filesystem::path& data, const std::string& code);
// What an English text reads in the language in use; the text itself where it has none.
HOST_API std::string_view Translation(std::string_view english);
// The same with values put in. A translation that does not take these values gives way to English.
HOST_API std::string Format(std::string_view english, fmt::format_args values);
// A text of the module, which knows English only: the numbers in it are the values, so that the key
// of "Density comes to 200" is "Density comes to {}".
HOST_API std::string OfModule(const std::string& english);

}  // namespace texts

// A text for people; "{}" stands for the values, which a translation may take in another order as
// "{1}", "{0}". scripts/messages.sh collects the texts that stand in these calls.
inline std::string Tr(const char* english) { return std::string(texts::Translation(english)); }
template <class... Values>
std::string Tr(fmt::format_string<Values...> english, Values&&... values) {
    const fmt::string_view text = english;
    return texts::Format({text.data(), text.size()}, fmt::make_format_args(values...));
}
// Marks a text that Translation gets later.
constexpr const char* TrLater(const char* english) { return english; }
