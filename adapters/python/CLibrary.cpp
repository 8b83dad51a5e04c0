#include "adapters/python/CLibrary.h"

#include "adapters/python/CProgress.h"
#include "adapters/python/Pixels.h"

namespace py = pybind11;

namespace {

struct SFree {
    void operator()(cmdtexture_effect* effect) const { cmdtexture_effect_free(effect); }
    void operator()(cmdtexture_recipe* recipe) const { cmdtexture_recipe_free(recipe); }
    void operator()(cmdtexture_error* error) const { cmdtexture_error_free(error); }
    void operator()(char* text) const { cmdtexture_free(text); }
    void operator()(char** names) const { cmdtexture_free_names(names); }
};
template <class Thing>
using Owned = std::unique_ptr<Thing, SFree>;

// Runs a call that takes an error; what that says is thrown.
template <class Call>
auto Checked(Call&& call) {
    cmdtexture_error* raw = nullptr;
    const auto answer = call(&raw);
    const Owned<cmdtexture_error> error(raw);
    if (error) {
        throw SFailure{cmdtexture_error_status(raw), cmdtexture_error_message(raw),
                       cmdtexture_error_hint(raw)};
    }
    return answer;
}

// The same for a call that answers a status, which tells of a failure that left no error behind.
template <class Call>
void Do(Call&& call) {
    const cmdtexture_status status = Checked(call);
    if (status != CMDTEXTURE_OK) throw SFailure{status, "there is not enough memory", ""};
}

template <class Call>
std::string Text(Call&& call) {
    const Owned<char> text(Checked(call));
    if (!text) throw std::bad_alloc();
    return text.get();
}

template <class Call>
std::vector<std::string> Names(Call&& call) {
    const Owned<char*> names(Checked(call));
    if (!names) throw std::bad_alloc();
    std::vector<std::string> all;
    for (char** name = names.get(); *name; ++name) all.emplace_back(*name);
    return all;
}

// Runs `apply(from, to, how, error)`, which takes the pictures of the run, without the
// interpreter's lock.
template <class Apply>
void RunOn(const SRun& run, Apply&& apply) {
    if (!run.destination.writeable()) throw py::value_error("the destination is read-only");
    const CArrayPicture from(run.source);
    std::optional<CArrayPicture> other;
    if (!run.destination.is(run.source)) other.emplace(run.destination);
    const CArrayPicture& to = other ? *other : from;
    std::optional<CArraySelection> selection;
    if (run.selection) selection.emplace(*run.selection, from.Image());
    CProgress progress(run.progress);

    cmdtexture_run how{};
    how.size = sizeof how;
    std::tie(how.x, how.y) = run.at;
    how.selection = selection ? selection->Pixels() : nullptr;
    how.selection_stride = selection ? selection->Stride() : 0;
    how.progress = &CProgress::Told;
    how.user = &progress;
    try {
        const py::gil_scoped_release others_run;
        apply(from.Image(), to.Image(), how);
    } catch (const SFailure&) {
        progress.Rethrow();
        throw;
    }
    to.WriteBack();
}

}  // namespace

CLibrary::CLibrary(const std::optional<std::string>& prefix,
                   const std::optional<std::string>& language,
                   const std::vector<std::string>& resource_folders) {
    std::vector<const char*> folders;
    folders.reserve(resource_folders.size());
    for (const std::string& folder : resource_folders) folders.push_back(folder.c_str());
    cmdtexture_options options{};
    options.size = sizeof options;
    options.prefix = prefix ? prefix->c_str() : nullptr;
    options.language = language ? language->c_str() : nullptr;
    options.resource_folders = folders.data();
    options.resource_folder_count = folders.size();
    cmdtexture_library* library = nullptr;
    Do([&](auto error) { return cmdtexture_open(&options, &library, error); });
    library_.reset(library);
}

std::string CLibrary::Language() const { return cmdtexture_language(library_.get()); }

std::string CLibrary::List() const {
    return Text([&](auto error) { return cmdtexture_list_json(library_.get(), error); });
}

std::string CLibrary::Describe(const std::string& effect) const {
    return Text([&](auto error) {
        return cmdtexture_describe_json(library_.get(), effect.c_str(), error);
    });
}

std::vector<std::string> CLibrary::Presets(const std::string& effect) const {
    return Names(
        [&](auto error) { return cmdtexture_preset_names(library_.get(), effect.c_str(), error); });
}

std::vector<std::string> CLibrary::Resources(cmdtexture_resource kind) const {
    return Names(
        [&](auto error) { return cmdtexture_resource_names(library_.get(), kind, error); });
}

void CLibrary::Run(const std::string& name, const std::optional<std::string>& preset,
                   const std::string& values, const SRun& run) const {
    RunOn(run, [&](const auto& from, const auto& to, const auto& how) {
        cmdtexture_effect* raw = nullptr;
        Do([&](auto e) { return cmdtexture_effect_new(library_.get(), name.c_str(), &raw, e); });
        const Owned<cmdtexture_effect> effect(raw);
        // In the order in which they build on one another.
        if (run.canvas) {
            Do([&](auto e) {
                return cmdtexture_effect_set_canvas(raw, run.canvas->first, run.canvas->second, e);
            });
        }
        if (preset) {
            Do([&](auto e) { return cmdtexture_effect_set_preset(raw, preset->c_str(), e); });
        }
        Do([&](auto e) { return cmdtexture_effect_set_json(raw, values.c_str(), e); });
        Do([&](auto e) { return cmdtexture_effect_apply(raw, &from, &to, &how, e); });
    });
}

void CLibrary::RunRecipe(const std::string& recipe, bool is_file, const SRun& run) const {
    RunOn(run, [&](const auto& from, const auto& to, const auto& how) {
        cmdtexture_recipe* raw = nullptr;
        Do([&](auto e) {
            return is_file
                       ? cmdtexture_recipe_read(library_.get(), recipe.c_str(), &raw, e)
                       : cmdtexture_recipe_new(library_.get(), recipe.c_str(), nullptr, &raw, e);
        });
        const Owned<cmdtexture_recipe> steps(raw);
        if (run.canvas) {
            Do([&](auto e) {
                return cmdtexture_recipe_set_canvas(raw, run.canvas->first, run.canvas->second, e);
            });
        }
        Do([&](auto e) { return cmdtexture_recipe_apply(raw, &from, &to, &how, e); });
    });
}
