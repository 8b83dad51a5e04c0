#include "Dialogs.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

using nlohmann::json;

class CReader {
  public:
    CReader(const std::filesystem::path& file, const std::map<int, std::string>& texts)
        : file_(file), texts_(texts) {}

    // Adds the file's template to the dialogs.
    void Read(json& dialogs) {
        std::ifstream in(file_);
        for (std::string line; std::getline(in, line);) {
            ++line_;
            std::istringstream words(line);
            std::string keyword;
            if (!(words >> keyword) || keyword[0] == '#') continue;
            ReadLine(keyword, words);
            if (!(words >> std::ws).eof()) Fail("too many words");
        }
        if (made_.empty()) Fail("no template");
        if (!dialogs.emplace(std::to_string(id_), made_).second) Fail("the template stands twice");
    }

  private:
    [[noreturn]] void Fail(const std::string& what) const {
        throw std::runtime_error(file_.string() + ":" + std::to_string(line_) + ": " + what);
    }

    void ReadLine(const std::string& keyword, std::istringstream& words) {
        if (keyword == "dialog") {
            id_ = Number(words);
            made_ = {{"title", Text(Number(words))}, {"groups", json::array()}};
        } else if (keyword == "group") {
            const bool titled = !(words >> std::ws).eof();
            made_["groups"].push_back(
                {{"title", titled ? Text(Number(words)) : ""}, {"rows", json::array()}});
        } else if (made_.empty() || made_["groups"].empty()) {
            Fail("controls stand in a group of a dialog");
        } else {
            made_["groups"].back()["rows"].push_back(ReadRow(keyword, words));
        }
    }

    json ReadRow(const std::string& keyword, std::istringstream& words) {
        json row{{"controls", json::array()}};
        if (keyword == "row") {
            row["label"] = Text(Number(words));
            if (words.peek() == ':') {
                words.get();
                row["labelId"] = ControlId(words);
            }
            for (std::string kind; words >> kind;) AddControl(row, kind, words);
        } else if (keyword == "check") {
            AddControl(row, keyword, words);
            row["controls"].back()["text"] = Text(Number(words));
        } else if (keyword == "label") {
            AddControl(row, keyword, words);
        } else {
            Fail("unknown keyword " + keyword);
        }
        return row;
    }

    void AddControl(json& row, const std::string& kind, std::istringstream& words) {
        static const std::set<std::string> kinds = {"number", "swatch",   "dial", "list",
                                                    "check",  "resource", "label"};
        if (!kinds.contains(kind)) Fail("unknown kind of control " + kind);
        row["controls"].push_back({{"kind", kind}, {"id", ControlId(words)}});
    }

    int ControlId(std::istringstream& words) {
        const int id = Number(words);
        if (!ids_.insert(id).second) Fail("control " + std::to_string(id) + " stands twice");
        return id;
    }

    int Number(std::istringstream& words) const {
        int number = 0;
        if (!(words >> number)) Fail("a number is missing");
        return number;
    }

    const std::string& Text(int id) const {
        const auto found = texts_.find(id);
        if (found == texts_.end()) Fail("there is no text " + std::to_string(id));
        return found->second;
    }

    std::filesystem::path file_;
    const std::map<int, std::string>& texts_;
    int line_ = 0;
    int id_ = 0;
    json made_;
    std::set<int> ids_;
};

}  // namespace

json MakeDialogs(const std::filesystem::path& folder, const std::map<int, std::string>& texts) {
    json dialogs = json::object();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") CReader(entry.path(), texts).Read(dialogs);
    }
    return dialogs;
}
