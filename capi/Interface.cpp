#include <fmt/format.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "app/imagefile/CPictureFiles.h"
#include "capi/Handles.h"
#include "capi/Pixels.h"

// The functions of the interface: each checks what the caller gave and hands it to job/.

namespace {

SJobOptions OptionsOf(const cmdtexture_options* given) {
    SJobOptions options;
    options.pictures = imagefile::MakePictureFiles();
    if (!given) return options;
    if (given->size < sizeof(cmdtexture_options)) {
        throw CJobError(EJobFault::Refused, "the options have an unknown size",
                        "size is sizeof(cmdtexture_options)");
    }
    if (given->prefix) options.installation = SInstallation::At(given->prefix);
    if (given->language) options.language = given->language;
    for (std::size_t i = 0; i < given->resource_folder_count; ++i) {
        options.resources.emplace_back(Given(given->resource_folders[i], "a resource folder"));
    }
    if (given->has_range_scale) options.range_scale = given->range_scale;
    return options;
}

class CCallback final : public IProgressSink {
  public:
    explicit CCallback(const cmdtexture_run& run) : run_(run) {}
    bool OnProgress(double fraction) override {
        return run_.progress && run_.progress(fraction, run_.user) != 0;
    }

  private:
    const cmdtexture_run& run_;
};

// As the program's: the sides of a document, and how far away from it a picture may lie.
constexpr int kLargestCanvas = 65535;
constexpr int kFarthest = 1000000;

cmdtexture_run RunOf(const cmdtexture_run* given) {
    if (!given) return {};
    if (given->size < sizeof(cmdtexture_run)) {
        throw CJobError(EJobFault::Refused, "the run has an unknown size",
                        "size is sizeof(cmdtexture_run)");
    }
    if (std::abs(std::int64_t{given->x}) > kFarthest ||
        std::abs(std::int64_t{given->y}) > kFarthest) {
        throw CJobError(EJobFault::Refused,
                        fmt::format("the picture lies at {}, {}", given->x, given->y),
                        fmt::format("places are {} to {}", -kFarthest, kFarthest));
    }
    return *given;
}

CRowIterator SelectionOf(const cmdtexture_run& run, const cmdtexture_image& source) {
    CRowIterator selection;
    if (!run.selection) return selection;
    // The host only reads it.
    const cmdtexture_image image{.size = sizeof(cmdtexture_image),
                                 .pixels = const_cast<std::uint8_t*>(run.selection),
                                 .stride = run.selection_stride,
                                 .width = source.width,
                                 .height = source.height,
                                 .layout = CMDTEXTURE_GREY,
                                 .depth = 8};
    CheckImage(&image, "selection");
    return ToHost(image);
}

CRowIteratorBands PictureOf(const cmdtexture_run& run, const cmdtexture_image& source) {
    CRowIteratorBands picture = ToHost(source);
    picture.SetOrigin({run.x, run.y});
    return picture;
}

CSize CanvasOf(int32_t width, int32_t height) {
    if (width < 0 || height < 0 || (width == 0) != (height == 0)) {
        throw CJobError(EJobFault::Refused, "a canvas has positive sides, or is 0 by 0");
    }
    if (width > kLargestCanvas || height > kLargestCanvas) {
        throw CJobError(EJobFault::Refused,
                        fmt::format("the canvas has {} x {} pixels", width, height),
                        fmt::format("its sides are at most {}", kLargestCanvas));
    }
    return {width, height};
}

// Runs `apply(picture, selection, sink)` and hands out what it made when all has succeeded.
template <class Apply>
void ApplyTo(const cmdtexture_image* source, const cmdtexture_image* destination,
             const cmdtexture_run* given_run, Apply&& apply) {
    CheckImage(source, "source");
    CheckImage(destination, "destination");
    CheckPair(*source, *destination);
    const cmdtexture_run run = RunOf(given_run);
    CCallback callback(run);
    const SJobResult result = apply(PictureOf(run, *source), SelectionOf(run, *source), &callback);
    if (result.error) throw CJobError(*result.error);
    FromHost(result.image, *destination);
}

}  // namespace

const char* cmdtexture_version(void) { return CMDTEXTURE_VERSION; }

cmdtexture_status cmdtexture_error_status(const cmdtexture_error* error) {
    return error ? error->status : CMDTEXTURE_OK;
}
const char* cmdtexture_error_message(const cmdtexture_error* error) {
    return error ? error->message.c_str() : "";
}
const char* cmdtexture_error_hint(const cmdtexture_error* error) {
    return error ? error->hint.c_str() : "";
}
void cmdtexture_error_free(cmdtexture_error* error) { delete error; }

void cmdtexture_free(char* text) { std::free(text); }
void cmdtexture_free_names(char** names) {
    for (char** name = names; name && *name; ++name) std::free(*name);
    std::free(names);
}

cmdtexture_status cmdtexture_open(const cmdtexture_options* options, cmdtexture_library** library,
                                  cmdtexture_error** error) {
    return Guard(error, [&] {
        *Given(library, "library") = nullptr;
        *library = new cmdtexture_library(CJobLibrary(OptionsOf(options)));
    });
}
void cmdtexture_close(cmdtexture_library* library) { delete library; }

size_t cmdtexture_effect_count(const cmdtexture_library* library) {
    return library ? library->records.size() : 0;
}
const cmdtexture_effect_info* cmdtexture_effect_at(const cmdtexture_library* library,
                                                   size_t index) {
    return index < cmdtexture_effect_count(library) ? &library->records[index] : nullptr;
}
const char* cmdtexture_language(const cmdtexture_library* library) {
    return library ? library->jobs.Language().c_str() : "";
}

char* cmdtexture_list_json(const cmdtexture_library* library, cmdtexture_error** error) {
    return GuardAnswer<char>(error, [&] {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const SEffectInfo& effect : Given(library, "library")->effects) {
            list.push_back(IdentityToJson(effect));
        }
        return Duplicate(list.dump(2));
    });
}
char* cmdtexture_describe_json(const cmdtexture_library* library, const char* effect,
                               cmdtexture_error** error) {
    return GuardAnswer<char>(error, [&] {
        const CJobLibrary& jobs = Given(library, "library")->jobs;
        return Duplicate(ToJson(jobs.Describe(Given(effect, "effect"))).dump(2));
    });
}

char** cmdtexture_resource_names(const cmdtexture_library* library, cmdtexture_resource kind,
                                 cmdtexture_error** error) {
    return GuardAnswer<char*>(error, [&] {
        const bool is_pattern = kind == CMDTEXTURE_PATTERN;
        if (!is_pattern && kind != CMDTEXTURE_TEXTURE) {
            throw CJobError(EJobFault::Refused, "there are patterns and textures only");
        }
        std::vector<std::string> names;
        for (const auto& file : Given(library, "library")
                                    ->jobs.Resources()
                                    .Files(is_pattern ? CFileResourceLibrary::kPatterns
                                                      : CFileResourceLibrary::kTextures)) {
            names.push_back(file.name);
        }
        return Duplicate(names);
    });
}
char** cmdtexture_preset_names(const cmdtexture_library* library, const char* effect,
                               cmdtexture_error** error) {
    return GuardAnswer<char*>(error, [&] {
        std::vector<std::string> names;
        for (const auto& preset :
             Given(library, "library")->jobs.Presets(Given(effect, "effect"))) {
            names.push_back(preset.id);
        }
        return Duplicate(names);
    });
}

cmdtexture_status cmdtexture_effect_new(const cmdtexture_library* library, const char* name,
                                        cmdtexture_effect** effect, cmdtexture_error** error) {
    return Guard(error, [&] {
        *Given(effect, "effect") = nullptr;
        const CJobLibrary& jobs = Given(library, "library")->jobs;
        *effect = new cmdtexture_effect(jobs.MakeJob(Given(name, "name")));
    });
}
cmdtexture_status cmdtexture_effect_copy(const cmdtexture_effect* effect, cmdtexture_effect** copy,
                                         cmdtexture_error** error) {
    return Guard(error, [&] {
        *Given(copy, "copy") = nullptr;
        *copy = new cmdtexture_effect(Given(effect, "effect")->job.Copy());
    });
}
void cmdtexture_effect_free(cmdtexture_effect* effect) { delete effect; }
const char* cmdtexture_effect_name(const cmdtexture_effect* effect) {
    return effect ? effect->job.Name().c_str() : "";
}

size_t cmdtexture_parameter_count(const cmdtexture_effect* effect) {
    return effect ? effect->records.size() : 0;
}
const cmdtexture_parameter* cmdtexture_parameter_at(const cmdtexture_effect* effect, size_t index) {
    return index < cmdtexture_parameter_count(effect) ? &effect->records[index] : nullptr;
}

cmdtexture_status cmdtexture_effect_set(cmdtexture_effect* effect, const char* parameter,
                                        const char* value, cmdtexture_error** error) {
    return Guard(error, [&] {
        Given(effect, "effect")->job.Set(Given(parameter, "parameter"), Given(value, "value"));
    });
}
cmdtexture_status cmdtexture_effect_set_json(cmdtexture_effect* effect, const char* json,
                                             cmdtexture_error** error) {
    return Guard(error, [&] { Given(effect, "effect")->job.SetJson(Given(json, "json")); });
}
cmdtexture_status cmdtexture_effect_set_preset(cmdtexture_effect* effect, const char* preset,
                                               cmdtexture_error** error) {
    return Guard(error, [&] { Given(effect, "effect")->job.TakePreset(Given(preset, "preset")); });
}
cmdtexture_status cmdtexture_effect_reset(cmdtexture_effect* effect, cmdtexture_error** error) {
    return Guard(error, [&] { Given(effect, "effect")->job.Reset(); });
}
char* cmdtexture_effect_get(const cmdtexture_effect* effect, const char* parameter,
                            cmdtexture_error** error) {
    return GuardAnswer<char>(error, [&] {
        return Duplicate(Given(effect, "effect")->job.Value(Given(parameter, "parameter")));
    });
}
char* cmdtexture_effect_get_json(const cmdtexture_effect* effect, cmdtexture_error** error) {
    return GuardAnswer<char>(
        error, [&] { return Duplicate(Given(effect, "effect")->job.Values().dump()); });
}

cmdtexture_status cmdtexture_effect_set_canvas(cmdtexture_effect* effect, int32_t width,
                                               int32_t height, cmdtexture_error** error) {
    return Guard(error, [&] {
        Given(effect, "effect")->job.SetCanvas(CanvasOf(width, height));
        effect->Describe();
    });
}

cmdtexture_status cmdtexture_effect_apply(const cmdtexture_effect* effect,
                                          const cmdtexture_image* source,
                                          const cmdtexture_image* destination,
                                          const cmdtexture_run* given_run,
                                          cmdtexture_error** error) {
    return Guard(error, [&] {
        // A job of its own: the effect stays as it is, and nothing of the caller's memory with it.
        CEffectJob job = Given(effect, "effect")->job.Copy();
        ApplyTo(source, destination, given_run,
                [&](const auto& picture, const auto& selection, IProgressSink* sink) {
                    job.SetPicture(picture, selection);
                    return job.Run(sink);
                });
    });
}

cmdtexture_status cmdtexture_recipe_new(const cmdtexture_library* library, const char* json,
                                        const char* folder, cmdtexture_recipe** recipe,
                                        cmdtexture_error** error) {
    return Guard(error, [&] {
        *Given(recipe, "recipe") = nullptr;
        *recipe = new cmdtexture_recipe{CRecipe::Parse(Given(library, "library")->jobs,
                                                       Given(json, "json"), folder ? folder : "")};
    });
}
cmdtexture_status cmdtexture_recipe_read(const cmdtexture_library* library, const char* file,
                                         cmdtexture_recipe** recipe, cmdtexture_error** error) {
    return Guard(error, [&] {
        *Given(recipe, "recipe") = nullptr;
        *recipe = new cmdtexture_recipe{
            CRecipe::Read(Given(library, "library")->jobs, Given(file, "file"))};
    });
}
void cmdtexture_recipe_free(cmdtexture_recipe* recipe) { delete recipe; }

char* cmdtexture_recipe_get_json(const cmdtexture_recipe* recipe, cmdtexture_error** error) {
    return GuardAnswer<char>(
        error, [&] { return Duplicate(Given(recipe, "recipe")->steps.ToJson().dump()); });
}

cmdtexture_status cmdtexture_recipe_set_canvas(cmdtexture_recipe* recipe, int32_t width,
                                               int32_t height, cmdtexture_error** error) {
    return Guard(error, [&] { Given(recipe, "recipe")->steps.SetCanvas(CanvasOf(width, height)); });
}

cmdtexture_status cmdtexture_recipe_apply(const cmdtexture_recipe* recipe,
                                          const cmdtexture_image* source,
                                          const cmdtexture_image* destination,
                                          const cmdtexture_run* given_run,
                                          cmdtexture_error** error) {
    return Guard(error, [&] {
        CRecipe steps = Given(recipe, "recipe")->steps.Copy();
        ApplyTo(source, destination, given_run,
                [&](const auto& picture, const auto& selection, IProgressSink* sink) {
                    return steps.Run(picture, selection, sink);
                });
    });
}
