#include "job/CRecipe.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <utility>

#include "hostlib/graphics/SelectionBlend.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/StrictJson.h"
#include "job/CFileResourceLibrary.h"
#include "job/CJobLibrary.h"
#include "job/Selection.h"

namespace {

using nlohmann::ordered_json;

constexpr std::uintmax_t kLargest = 1 << 20;  // bytes of a recipe
constexpr std::size_t kMostSteps = 256;

constexpr std::pair<const char*, ENBlendMode> kModes[] = {
    {"normal", ENBlendMode::Normal},        {"multiply", ENBlendMode::Multiply},
    {"screen", ENBlendMode::Screen},        {"overlay", ENBlendMode::Overlay},
    {"soft-light", ENBlendMode::SoftLight}, {"luminosity", ENBlendMode::Luminosity}};

[[noreturn]] void Refuse(const std::string& what, const std::string& hint = "") {
    throw CJobError(EJobFault::Refused, what, hint);
}

// The JSON that `read` answers, or why it cannot.
template <class Reading>
ordered_json Usable(Reading&& read) {
    try {
        return read();
    } catch (const std::runtime_error& error) {
        Refuse(Tr("the recipe is not usable: {}", error.what()));
    }
}

// Runs `work`; what it throws gets `where` before its text.
template <class Work>
auto At(const std::string& where, Work&& work) {
    try {
        return work();
    } catch (const CJobError& error) {
        throw CJobError(error.Fault(), fmt::format("{}: {}", where, error.what()), error.Hint());
    }
}

void CheckNames(const ordered_json& step) {
    static const std::vector<std::string> kNames = {"effect", "preset",  "parameters",
                                                    "mask",   "opacity", "blend"};
    for (const auto& [name, value] : step.items()) {
        if (std::find(kNames.begin(), kNames.end(), name) != kNames.end()) continue;
        const std::string hint = DidYouMean(name, kNames);
        Refuse(Tr("a step has no \"{}\"", name),
               hint.empty() ? Tr("it has {}", fmt::join(kNames, ", ")) : hint);
    }
}

// The text of a name; empty when it is not there.
std::string TextOf(const ordered_json& step, const char* name) {
    if (!step.contains(name)) return {};
    if (!step[name].is_string() || step[name].get_ref<const std::string&>().empty()) {
        Refuse(Tr("\"{}\" is not a text", name));
    }
    return step[name];
}

double OpacityOf(const ordered_json& step) {
    if (!step.contains("opacity")) return 1;
    const ordered_json& given = step["opacity"];
    double opacity = -1;
    if (given.is_number()) opacity = given;
    if (given.is_string()) {
        const auto& text = given.get_ref<const std::string&>();
        const char* end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, opacity);
        opacity =
            read.ec == std::errc() && std::string_view(read.ptr, end) == "%" ? opacity / 100 : -1;
    }
    if (opacity >= 0 && opacity <= 1) return opacity;
    Refuse(Tr("the opacity {} is out of range", given.dump()),
           Tr("an opacity is a number from 0 to 1, or a text such as \"60%\""));
}

ENBlendMode BlendOf(const ordered_json& step) {
    std::string wanted = TextOf(step, "blend");
    if (wanted.empty()) return ENBlendMode::Normal;
    std::replace_if(
        wanted.begin(), wanted.end(), [](char c) { return c == ' ' || c == '_'; }, '-');
    std::vector<std::string> names;
    for (const auto& [name, mode] : kModes) {
        if (SameName(name, wanted)) return mode;
        names.emplace_back(name);
    }
    Refuse(Tr("there is no blend mode \"{}\"", TextOf(step, "blend")),
           Tr("there are {}", fmt::join(names, ", ")));
}

// A file that the recipe names.
std::filesystem::path FileIn(const std::filesystem::path& folder, const std::string& name) {
    return name.empty() ? std::filesystem::path() : folder / name;
}

// A preset's file beside the recipe, or else what the user's presets are asked for.
std::string PresetIn(const std::filesystem::path& folder, const std::string& preset) {
    std::error_code none;
    const std::filesystem::path beside = folder / preset;
    return std::filesystem::is_regular_file(beside, none) ? beside.string() : preset;
}

SRecipeStep ReadStep(const CJobLibrary& library, const ordered_json& step,
                     const std::filesystem::path& folder) {
    if (!step.is_object()) Refuse(Tr("is not an object with an \"effect\""));
    CheckNames(step);
    const std::string effect = TextOf(step, "effect");
    if (effect.empty()) Refuse(Tr("names no effect"), Tr("give it an \"effect\""));
    SRecipeStep read{.job = library.MakeJob(effect),
                     .mask = FileIn(folder, TextOf(step, "mask")),
                     .opacity = OpacityOf(step),
                     .blend = BlendOf(step)};
    const std::string preset = TextOf(step, "preset");
    if (!preset.empty()) read.job.TakePreset(PresetIn(folder, preset));
    if (step.contains("parameters")) read.job.Set(step["parameters"]);
    read.job.CheckResources();
    return read;
}

// What reading a mask throws, as an error of the job.
template <class Reading>
auto WithMaskErrors(Reading&& reading) {
    try {
        return reading();
    } catch (const CNException& error) {
        throw CJobError(EJobFault::Unreadable, error.what());
    }
}

SJobResult RunStep(SRecipeStep& step, const CRowIteratorBands& picture,
                   const CRowIterator& selection, IProgressSink* sink) {
    const bool limits_mixed = step.blend != ENBlendMode::Normal && selection.IsAttached();
    step.job.SetPicture(picture, limits_mixed ? CRowIterator() : selection);
    SJobResult result = step.job.Run(sink);
    step.job.SetPicture({});
    if (result.error) return result;
    if (result.image.SharesPixelsWith(picture)) {
        const CRowIteratorBands shared = result.image;
        result.image.Destroy();
        result.image.Copy(shared, 0).ThrowIfFailed();
    }
    result.image.SetOrigin({picture.GetRect().left, picture.GetRect().top});
    CErrorAutoThrow error = BlendLayer(picture, step.blend, step.opacity, result.image);
    if (!error.Failed() && limits_mixed) {
        error = BlendBySelection(picture, selection, result.image);
    }
    error.ThrowIfFailed();
    return result;
}

// A step's share of the whole.
class CShare final : public IProgressSink {
  public:
    CShare(IProgressSink* whole, std::size_t step, std::size_t steps)
        : whole_(whole), step_(static_cast<double>(step)), steps_(static_cast<double>(steps)) {}
    bool OnProgress(double fraction) override {
        return whole_ && whole_->OnProgress((step_ + fraction) / steps_);
    }

  private:
    IProgressSink* whole_;
    double step_, steps_;
};

}  // namespace

CRecipe::CRecipe(CEffectJob job) { steps_.push_back({.job = std::move(job)}); }

CRecipe CRecipe::Read(const CJobLibrary& library, const std::filesystem::path& file) {
    return At(DisplayText(file), [&] {
        return Of(library, Usable([&] { return ReadStrictJson(file, kLargest); }),
                  file.parent_path());
    });
}

CRecipe CRecipe::Parse(const CJobLibrary& library, const std::string& text,
                       const std::filesystem::path& folder) {
    return Of(library, Usable([&] { return ParseStrictJson(text); }), folder);
}

CRecipe CRecipe::Of(const CJobLibrary& library, const ordered_json& steps,
                    const std::filesystem::path& folder) {
    if (!steps.is_array() || steps.empty()) {
        Refuse(Tr("the recipe has no steps"),
               Tr("a recipe is a JSON list such as [{\"effect\": \"Fur\"}]"));
    }
    if (steps.size() > kMostSteps) {
        Refuse(Tr("the recipe has more than {} steps", kMostSteps));
    }
    CRecipe recipe;
    recipe.pictures_ = library.Resources().Pictures();
    for (const ordered_json& step : steps) {
        At(Tr("step {}", recipe.steps_.size() + 1), [&] {
            recipe.steps_.push_back(ReadStep(library, step, folder));
            recipe.CheckMask(recipe.steps_.back(), nullptr);
        });
    }
    return recipe;
}

CRecipe CRecipe::Copy() const {
    CRecipe copy;
    copy.pictures_ = pictures_;
    for (const SRecipeStep& step : steps_) {
        copy.steps_.push_back({step.job.Copy(), step.mask, step.opacity, step.blend});
    }
    return copy;
}

std::string CRecipe::Title() const {
    std::string title;
    for (const SRecipeStep& step : steps_) {
        title += (title.empty() ? "" : ", ") + step.job.Name();
    }
    return title;
}

ordered_json CRecipe::ToJson() const {
    ordered_json json = ordered_json::array();
    for (const SRecipeStep& step : steps_) {
        ordered_json row = {{"effect", step.job.Name()}, {"parameters", step.job.Values()}};
        if (!step.mask.empty()) row["mask"] = step.mask.string();
        row["opacity"] = step.opacity;
        row["blend"] = kModes[static_cast<std::size_t>(step.blend)].first;
        json.push_back(std::move(row));
    }
    return json;
}

void CRecipe::SetCanvas(CSize canvas) {
    for (SRecipeStep& step : steps_) step.job.SetCanvas(canvas);
}

void CRecipe::CheckMasks(CSize picture) const {
    for (const SRecipeStep& step : steps_) CheckMask(step, &picture);
}

void CRecipe::CheckMask(const SRecipeStep& step, const CSize* picture) const {
    if (step.mask.empty()) return;
    if (!pictures_) throw CJobError(EJobFault::Unreadable, Tr("there is no decoder for masks"));
    const CSize size = WithMaskErrors([&] { return pictures_->ReadSize(step.mask); });
    if (!picture || size == *picture) return;
    Refuse(Tr("{}: the mask is {} x {}, the image {} x {}", DisplayText(step.mask), size.cx,
              size.cy, picture->cx, picture->cy),
           Tr("a mask has the size of the image"));
}

CRowIterator CRecipe::SelectionFor(const SRecipeStep& step, const CRowIteratorBands& picture,
                                   const CRowIterator& selection) const {
    if (step.mask.empty()) return selection;
    const CSize size{picture.GetWidth(), picture.GetHeight()};
    CheckMask(step, &size);
    return WithMaskErrors([&] { return ToSelection(pictures_->Read(step.mask)); });
}

SJobResult CRecipe::Run(CRowIteratorBands picture, const CRowIterator& selection,
                        IProgressSink* sink) {
    try {
        for (std::size_t i = 0; i < steps_.size(); ++i) {
            CShare share(sink, i, steps_.size());
            SJobResult result =
                RunStep(steps_[i], picture, SelectionFor(steps_[i], picture, selection), &share);
            if (result.error) return result;
            picture = result.image;
        }
        return {picture, {}};
    } catch (const CJobError& error) {
        return {{}, error};
    } catch (const std::bad_alloc&) {
        return {{}, CJobError(EJobFault::Memory, Tr("there is not enough memory"))};
    } catch (const std::exception& error) {
        return {{}, CJobError(EJobFault::Fault, error.what())};
    }
}
