#include "hostlib/parameters/CommandLine.h"

#include <algorithm>
#include <cctype>

#include "hostlib/parameters/ParameterValues.h"

namespace {

bool IsPlain(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) ||
           std::string("_-./,:=+@%").find(c) != std::string::npos;
}

}  // namespace

// Within single quotes a shell takes everything as it stands, but for the quote itself.
std::string QuotedForShell(const std::string& word) {
    if (!word.empty() && std::all_of(word.begin(), word.end(), IsPlain)) return word;
    std::string quoted = "'";
    for (const char c : word) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

std::string QuotedFile(const std::string& file) {
    return QuotedForShell(file.starts_with('-') ? "./" + file : file);
}

std::string ApplyCommandLine(const std::string& effect, const std::string& input,
                             const std::string& output, IParameterRepository& repository) {
    std::string line = "cmdtexture apply " + QuotedForShell(effect) + " " + QuotedFile(input) +
                       " -o " + QuotedFile(output);
    for (const IParameter* parameter : parameters::All(repository)) {
        const bool is_default = parameter->Number() == parameter->DefaultNumber() &&
                                parameter->Text() == parameter->DefaultText();
        if (is_default) continue;
        line += " -p " +
                QuotedForShell(ToUtf8(parameter->Name()) + "=" + parameters::ToText(*parameter));
    }
    return line;
}
