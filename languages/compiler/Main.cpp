// Makes a language resource module, a JSON file, from the texts of one language and the dialog
// templates, which all languages share:
//   cmdtexture-rc LANGUAGE_FOLDER REFERENCE_FOLDER DIALOG_FOLDER OUTPUT
// Every id must stand once, and the language must have the ids of the reference language.
// Makes the messages of a language, a JSON file as well, from its PO file:
//   cmdtexture-rc MESSAGES.po OUTPUT

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "Dialogs.h"
#include "Messages.h"

namespace {

using Texts = std::map<int, std::string>;

[[noreturn]] void Fail(const std::filesystem::path& file, int line, const std::string& what) {
    throw std::runtime_error(file.string() + ":" + std::to_string(line) + ": " + what);
}

// \n becomes a line feed, \\ a backslash.
std::string Unescape(const std::string& text, const std::filesystem::path& file, int line) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            plain += text[i];
            continue;
        }
        const char next = i + 1 < text.size() ? text[++i] : '\0';
        if (next != 'n' && next != '\\') Fail(file, line, "a backslash is followed by n or \\");
        plain += next == 'n' ? '\n' : '\\';
    }
    return plain;
}

void ReadTexts(const std::filesystem::path& file, Texts& texts) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error(file.string() + ": cannot be read");
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t equals = line.find(" = ");
        if (equals == std::string::npos) Fail(file, number, "expected \"ID = text\"");
        const int id = std::stoi(line.substr(0, equals));
        const bool added =
            texts.emplace(id, Unescape(line.substr(equals + 3), file, number)).second;
        if (!added) Fail(file, number, "id " + std::to_string(id) + " stands twice");
    }
}

Texts ReadLanguage(const std::filesystem::path& folder) {
    Texts texts;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") ReadTexts(entry.path(), texts);
    }
    return texts;
}

void RequireSameIds(const Texts& texts, const Texts& reference, const std::string& folder) {
    for (const auto& [id, text] : reference) {
        if (!texts.contains(id)) {
            throw std::runtime_error(folder + ": id " + std::to_string(id) + " is missing");
        }
    }
    for (const auto& [id, text] : texts) {
        if (!reference.contains(id)) {
            throw std::runtime_error(folder + ": id " + std::to_string(id) +
                                     " is not in the reference language");
        }
    }
}

nlohmann::json MakeResources(const std::filesystem::path& folder, const char* reference,
                             const char* dialogs) {
    const Texts texts = ReadLanguage(folder);
    RequireSameIds(texts, ReadLanguage(reference), folder.string());
    nlohmann::json root;
    root["format"] = 1;  // raised when a reader of the last one could not read it
    root["language"] = folder.filename().string();
    for (const auto& [id, text] : texts) root["strings"][std::to_string(id)] = text;
    root["dialogs"] = MakeDialogs(dialogs, texts);
    return root;
}

void Write(const nlohmann::json& root, const std::string& file) {
    std::ofstream out(file, std::ios::binary);
    out << root.dump(1) << '\n';
    out.close();
    if (!out) throw std::runtime_error(file + ": cannot be written");
}

}  // namespace

int main(int count, char** arguments) {
    try {
        if (count == 3) {
            Write(ReadMessages(arguments[1]), arguments[2]);
        } else if (count == 5) {
            Write(MakeResources(arguments[1], arguments[2], arguments[3]), arguments[4]);
        } else {
            throw std::runtime_error(
                "usage: LANGUAGE_FOLDER REFERENCE_FOLDER DIALOG_FOLDER OUTPUT, or MESSAGES.po "
                "OUTPUT");
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "cmdtexture-rc: " << error.what() << '\n';
        return 1;
    }
}
