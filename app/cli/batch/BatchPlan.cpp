#include "app/cli/batch/BatchPlan.h"

#include <fmt/format.h>
#include <glib.h>
#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <set>
#include <unordered_map>

#include "app/cli/CliError.h"
#include "app/cli/batch/CBatchLog.h"
#include "app/cli/batch/Digest.h"
#include "app/cli/batch/InputSet.h"
#include "app/cli/batch/OutputTemplate.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/StrictJson.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

// Everything that a recipe's results depend on: its values, also where they follow the picture's
// size, and the bytes of the pictures that it uses; and how pictures are read and written.
std::string DigestOf(const CRecipe& recipe, const CJobLibrary& library,
                     const SBatchOptions& options) {
    std::string all = recipe.ToJson().dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    try {
        CRecipe large = recipe.Copy();
        large.SetCanvas({6000, 4000});
        all += large.ToJson().dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    } catch (const CJobError&) {  // a value that such a size does not allow follows none
    }
    for (const SRecipeStep& step : recipe.Steps()) {
        if (!step.mask.empty()) all += digest::OfFile(step.mask);
        std::string category, name;
        int type = 0;
        for (const SParameterInfo& parameter : step.job.Describe().parameters) {
            if (parameter.name == "Category") category = step.job.Value(parameter.name);
            if (parameter.resource_type == 0) continue;
            type = parameter.resource_type;
            name = step.job.Value(parameter.name);
        }
        if (type == 0) continue;
        const auto found = library.Resources().Find(type, name, category);
        if (found) all += digest::OfFile(found->file);
    }
    const imagefile::SWriteOptions& coding = options.coding;
    all += fmt::format("|{}|{}|{}|{}|{}|{}|{}", coding.format, coding.quality.value_or(0),
                       coding.subsampling, coding.compression, options.reading.input.lenient,
                       options.reading.input.convert, options.session.range_scale);
    return digest::Text(all);
}

// The command line's own work, as a manifest says it.
ordered_json WorkOf(const SWorkOptions& options, const CRecipe& recipe) {
    if (!options.recipe.empty()) return options.recipe;
    const CEffectJob& job = recipe.Steps()[0].job;
    ordered_json step = {{"effect", job.Name()}};
    if (!options.parameters.preset.empty()) step["preset"] = options.parameters.preset;
    const ordered_json values = job.Values();
    for (const std::string& assignment : options.parameters.values) {
        const std::string given = assignment.substr(0, assignment.find('='));
        for (const auto& [name, value] : values.items()) {
            if (SameName(name, given)) step["parameters"][name] = value;
        }
    }
    return ordered_json::array({step});
}

std::string TitleOf(const ordered_json& work, const CRecipe& recipe) {
    if (work.is_string()) return fs::path(work.get<std::string>()).stem();
    std::string title = recipe.Title();
    std::erase(title, ' ');
    std::replace(title.begin(), title.end(), ',', '-');
    return title;
}

// A name as it is compared: what differs by letter case only is the same.
std::string Folded(const std::string& name) {
    const std::string whole = fs::absolute(name).lexically_normal();
    const auto freed = [](char* text) {
        return std::unique_ptr<char, void (*)(void*)>(text, &g_free);
    };
    const auto valid = freed(g_utf8_make_valid(whole.c_str(), -1));
    const auto normal = freed(g_utf8_normalize(valid.get(), -1, G_NORMALIZE_NFC));
    return freed(g_utf8_casefold(normal.get(), -1)).get();
}

class CPlanner {
  public:
    CPlanner(const CJobLibrary& library, const SBatchOptions& options, const CBatchLog* log)
        : library_(library), options_(options), log_(log) {
        if (!options.output.empty()) template_.emplace(options.output);
        plan_.shard = options.shard.empty() ? SShard::FromEnvironment().value_or(SShard())
                                            : SShard::Parse(options.shard);
    }

    SBatchPlan Make() {
        if (has_common_) {
            CRecipe recipe = MakeCheckedRecipe(library_, options_.work);
            ordered_json work = WorkOf(options_.work, recipe);
            plan_.common_work = work;
            AddRecipe(std::move(recipe), std::move(work));
        } else if (options_.manifest.empty()) {
            MakeCheckedRecipe(library_, options_.work);  // says what is missing
        }
        AddInputs();
        if (!options_.manifest.empty()) AddManifest();
        if (plan_.items.empty() && options_.manifest.empty()) {
            throw CCliError(EExit::Unreadable, Tr("there are no pictures to work on"),
                            Tr("--recursive looks into folders below, too"));
        }
        RefuseClashes();
        plan_.of = plan_.items.size();
        std::erase_if(plan_.items,
                      [&](const SBatchItem& item) { return !plan_.shard.Has(item.input); });
        RefuseOwnInputs();
        return std::move(plan_);
    }

  private:
    std::size_t AddRecipe(CRecipe recipe, ordered_json work) {
        const std::string title = TitleOf(work, recipe);
        std::string digest = DigestOf(recipe, library_, options_);
        plan_.recipes.push_back({std::move(recipe), std::move(work), title, std::move(digest)});
        return plan_.recipes.size() - 1;
    }

    void AddInputs() {
        // What the batch has made is no input when it runs again.
        const fs::path folder = template_ ? template_->Folder() : fs::path();
        const std::string results =
            folder.empty() ? "" : fs::absolute(folder).lexically_normal().string();
        const auto skips = [&](const fs::path& path) {
            if (!results.empty() && (fs::absolute(path) / "").lexically_normal() == results) {
                return true;
            }
            const SPictureRecord* record = log_ ? log_->Find(path.lexically_normal()) : nullptr;
            return record && record->was_begun;
        };
        for (SFoundInput& input : FindInputs(options_.inputs, options_.recursive, skips)) {
            SBatchItem item;
            item.input = input.file;
            AddItem(std::move(item), input.folder);
        }
    }

    void AddItem(SBatchItem item, const std::string& folder) {
        ++index_;
        const SDocumentOptions& all = options_.reading;
        if (item.mask.empty()) item.mask = all.mask;
        if (item.canvas.empty()) item.canvas = all.canvas;
        if (item.at.empty()) item.at = all.at;
        CheckDocumentOptions(item.Document(all));
        if (item.output.empty()) {
            if (!template_) {
                throw CCliError(EExit::Usage,
                                Tr("{}: there is no output for it", DisplayText(item.input)),
                                Tr("-o 'out/{name}.{ext}' gives one to every picture"));
            }
            const fs::path file(item.input);
            const std::string extension = file.extension();
            item.output = template_->Expand({.dir = folder,
                                             .name = file.stem(),
                                             .ext = extension.empty() ? "" : extension.substr(1),
                                             .effect = plan_.recipes[item.recipe].title,
                                             .index = index_,
                                             .page = std::max(item.page, 1)});
        }
        plan_.items.push_back(std::move(item));
    }

    void AddManifest() {
        std::ifstream in(options_.manifest, std::ios::binary);
        if (!in || fs::is_directory(options_.manifest)) {
            throw CCliError(EExit::Unreadable,
                            Tr("{}: the manifest cannot be read", DisplayText(options_.manifest)));
        }
        std::string text;
        for (int number = 1; std::getline(in, text); ++number) {
            if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
            try {
                AddRow(ParseStrictJson(text));
            } catch (const CCliError& error) {
                throw CCliError(error.Exit(), Where(number) + error.what(), error.Hint());
            } catch (const CJobError& error) {
                throw CCliError(EExit::Usage, Where(number) + error.what(), error.Hint());
            } catch (const ordered_json::exception&) {
                throw CCliError(EExit::Usage,
                                Where(number) + Tr("a value is of another type than it should be"),
                                Tr(kRowHint));
            } catch (const std::runtime_error& error) {
                throw CCliError(EExit::Usage, Where(number) + error.what(), Tr(kRowHint));
            }
        }
    }

    std::string Where(int line) const {
        return Tr("{}: line {}: ", DisplayText(options_.manifest), line);
    }

    void AddRow(ordered_json row) {
        if (!row.is_object() || !(row.contains("input") || row.contains("inputHex"))) {
            throw CCliError(EExit::Usage, Tr("names no \"input\""), Tr(kRowHint));
        }
        SBatchItem item(row);
        for (std::string* name : {&item.input, &item.output}) {
            *name = fs::path(*name).lexically_normal();
        }
        for (const std::string& name : SBatchItem::kNames) row.erase(name);
        item.recipe = RecipeOf(row);
        const std::string folder = FolderBelow(fs::path(item.input).parent_path());
        AddItem(std::move(item), folder);
    }

    // The recipe of a row without its names: a file, a list of steps, or the row is a step itself.
    std::size_t RecipeOf(const ordered_json& row) {
        if (row.empty()) {
            if (has_common_) return 0;
            throw CCliError(EExit::Usage, Tr("names no \"effect\" and no \"recipe\""),
                            Tr(kRowHint));
        }
        if (row.contains("recipe") && row.size() > 1) {
            throw CCliError(EExit::Usage, Tr("has more than the \"recipe\""), Tr(kRowHint));
        }
        const ordered_json work =
            row.contains("recipe") ? row["recipe"] : ordered_json::array({row});
        const auto [known, is_new] = recipes_.try_emplace(work.dump(), plan_.recipes.size());
        if (is_new) {
            AddRecipe(work.is_string() ? CRecipe::Read(library_, work.get<std::string>())
                                       : CRecipe::Parse(library_, work.dump()),
                      work);
        }
        return known->second;
    }

    // By the names of the whole set, so that every shard comes to the same end.
    void RefuseClashes() {
        std::unordered_map<std::string, const SBatchItem*> by_name;
        std::vector<SBatchItem> kept;
        for (const SBatchItem& item : plan_.items) {
            const auto [other, is_new] = by_name.try_emplace(Folded(item.output), &item);
            if (!is_new && *other->second != item) RefuseClash(*other->second, item);
            if (is_new) kept.push_back(item);
        }
        for (const SBatchItem& item : plan_.items) {
            for (const std::string& read : {item.input, item.mask}) {
                const auto written = by_name.find(read.empty() ? read : Folded(read));
                if (written != by_name.end()) RefuseInput(*written->second);
            }
        }
        plan_.items = std::move(kept);
    }

    // An output that is an input by another name, such as a link.
    void RefuseOwnInputs() const {
        std::set<std::pair<dev_t, ino_t>> inputs;
        struct stat found = {};
        for (const SBatchItem& item : plan_.items) {
            if (stat(item.input.c_str(), &found) == 0) inputs.insert({found.st_dev, found.st_ino});
        }
        for (const SBatchItem& item : plan_.items) {
            const bool exists = stat(item.output.c_str(), &found) == 0;
            if (exists && inputs.contains({found.st_dev, found.st_ino})) RefuseInput(item);
        }
    }

    [[noreturn]] static void RefuseInput(const SBatchItem& item) {
        throw CCliError(EExit::Usage,
                        fmt::format("{}: the output is an input", DisplayText(item.output)),
                        "a batch leaves its inputs alone: let -o lead elsewhere");
    }

    [[noreturn]] static void RefuseClash(const SBatchItem& a, const SBatchItem& b) {
        const bool by_case = a.output != b.output;
        throw CCliError(EExit::Usage,
                        by_case
                            ? Tr("{} and {}, made of {} and {}, differ by letter case only",
                                 DisplayText(a.output), DisplayText(b.output), DisplayText(a.input),
                                 DisplayText(b.input))
                            : Tr("{}: {} and {} would both be written to it", DisplayText(a.output),
                                 DisplayText(a.input), DisplayText(b.input)),
                        Tr("{dir}, {ext}, {page} and {index} in -o tell outputs apart"));
    }

    static constexpr const char* kRowHint = TrLater(
        "a line is an object such as {\"input\": \"a.jpg\", \"output\": \"b.jpg\", "
        "\"effect\": \"Fur\"}");

    const CJobLibrary& library_;
    const SBatchOptions& options_;
    const CBatchLog* log_;
    std::optional<COutputTemplate> template_;
    SBatchPlan plan_;
    std::size_t index_ = 0;
    std::unordered_map<std::string, std::size_t> recipes_;  // of the manifest, by their JSON
    const bool has_common_ = !options_.work.effect.empty() || !options_.work.recipe.empty();
};

}  // namespace

const std::vector<std::string> SBatchItem::kNames = {
    "input", "inputHex", "output", "outputHex", "page", "mask", "maskHex", "canvas", "at"};

SBatchItem::SBatchItem(const ordered_json& line)
    : page(line.value("page", 0)), canvas(line.value("canvas", "")), at(line.value("at", "")) {
    const auto take = [&](const std::string& key) {
        const bool is_there = line.contains(key) || line.contains(key + "Hex");
        return is_there ? TakeName(line, key) : std::string();
    };
    input = take("input");
    output = take("output");
    mask = take("mask");
}

SDocumentOptions SBatchItem::Document(const SDocumentOptions& all) const {
    SDocumentOptions document = all;
    document.input.file = input;
    document.input.page = page;
    document.mask = mask;
    document.canvas = canvas;
    document.at = at;
    return document;
}

ordered_json SBatchItem::Line(const char* event) const {
    ordered_json line = ordered_json::object();
    if (event) line["event"] = event;
    PutName(line, "input", input);
    PutName(line, "output", output);
    if (page > 0) line["page"] = page;
    if (!mask.empty()) PutName(line, "mask", mask);
    if (!canvas.empty()) line["canvas"] = canvas;
    if (!at.empty()) line["at"] = at;
    return line;
}

SBatchPlan MakePlan(const CJobLibrary& library, const SBatchOptions& options,
                    const CBatchLog* log) {
    return CPlanner(library, options, log).Make();
}
