#include "job/CEffectJob.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "hostlib/language/Texts.h"
#include "hostlib/parameters/PresetLibrary.h"
#include "hostlib/parameters/Presets.h"
#include "hostlib/system/StrictJson.h"
#include "job/CRunResources.h"
#include "job/SJobParts.h"

namespace {

// What the module and the synthesis of materials say, for the translators.
[[maybe_unused]] constexpr const char* kModuleTexts[] = {
    TrLater("a side of the image is longer than {} pixels"),
    TrLater("WeaveWidth is {} and GapWidth {}; one of them must be at least {}"),
    TrLater("Density comes to {} on an image so much wider than its canvas; it may be {} to {}"),
    TrLater("the photograph is smaller than {} x {} pixels"),
};

// Runs `operation`; what the host refuses, or a preset's trouble, is thrown as a CJobError.
template <class Operation>
auto WithJobErrors(Operation&& operation) {
    try {
        return operation();
    } catch (const parameters::CRefused& refused) {
        throw CJobError(EJobFault::Refused, refused.what(), refused.Hint());
    } catch (const CNException& error) {
        if (error.Code() == TolmErrorCode::UnusableInput) {
            throw CJobError(EJobFault::Refused, error.what(),
                            Tr("a name has no slash and no dot at its beginning"));
        }
        throw CJobError(EJobFault::Preset, error.what());
    }
}

// A file, whatever its name; otherwise the preset of the name, if there is one.
std::filesystem::path PresetFile(const std::string& effect, const std::string& preset) {
    std::error_code none;
    // A folder that happens to have a preset's name does not hide it.
    if (std::filesystem::is_regular_file(preset, none)) return preset;
    if (const auto found = presets::Find(effect, preset)) return found->file;
    std::filesystem::path file(preset);
    if (file.has_parent_path() || file.extension() == ".json") return file;
    throw CJobError(EJobFault::Preset, Tr("there is no preset \"{}\" of {}", preset, effect),
                    presets::Hint(preset, presets::List(effect)));
}

// The reason of a run that failed.
CJobError ErrorOf(const std::string& name, const CErrorAutoThrow& error) {
    if (error.Code() == TolmErrorCode::Cancelled) return {EJobFault::Cancelled, Tr("cancelled")};
    if (error.Code() == TolmErrorCode::ScratchFailed) return {EJobFault::Scratch, error.Text()};
    if (error.Code() == TolmErrorCode::NotCreated) {
        return {EJobFault::Memory, Tr("there is not enough memory for {}", name)};
    }
    const int code = static_cast<int>(error.Code());
    return {EJobFault::Effect, *error.Text() ? Tr("{} failed with error {}: {}", name, code,
                                                  texts::OfModule(error.Text()))
                                             : Tr("{} failed with error {}", name, code)};
}

}  // namespace

void CEffectJob::SParts::Define() {
    const CJobLibrary::CScope scope(*library);
    const TRef<CExecutionContext> context(
        new CExecutionContext(document, library->resources, nullptr));
    PrepareCommand(*command, context.Get());
    for (const auto& [index, value] : given) {
        if (!scaled.contains(index)) parameters::Set(*Repository().At(index), value);
    }
    Scale();
}

void CEffectJob::SParts::Keep(int index, const parameters::SValue& value) {
    given[index] = value;
    scaled.erase(index);
}

void CEffectJob::SParts::Scale() {
    const CSize canvas = document ? CSize{document->GetWidth(), document->GetHeight()} : CSize();
    for (const auto& [index, value] : scaled) {
        IParameter& parameter = *Repository().At(index);
        given[index] = parameters::Parse(parameter, std::to_string(value.For(canvas, parameter)));
        parameters::Set(parameter, given[index]);
    }
}

CEffectJob::CEffectJob(std::unique_ptr<SParts> parts) : parts_(std::move(parts)) {}
CEffectJob::CEffectJob(CEffectJob&& other) noexcept = default;
CEffectJob& CEffectJob::operator=(CEffectJob&& other) noexcept = default;
CEffectJob::~CEffectJob() = default;

CEffectJob CEffectJob::Copy() const {
    CEffectJob copy = CJobLibrary(parts_->library).MakeJob(parts_->name);
    copy.parts_->given = parts_->given;
    copy.parts_->scaled = parts_->scaled;
    if (parts_->document) copy.parts_->document = new CDocument(*parts_->document);
    copy.parts_->Define();
    return copy;
}

const std::string& CEffectJob::Name() const { return parts_->name; }
SEffectInfo CEffectJob::Describe() const { return SEffectInfo::Of(*parts_->command); }

void CEffectJob::Set(const std::string& parameter, const std::string& value) {
    WithJobErrors([&] {
        const int index = parameters::IndexOf(parts_->Repository(), parameter);
        IParameter& found = *parts_->Repository().At(index);
        const parameters::SValue parsed = parameters::Parse(found, value);
        parameters::Set(found, parsed);
        parts_->Keep(index, parsed);
    });
}

void CEffectJob::Set(const nlohmann::ordered_json& values) {
    WithJobErrors([&] {
        for (auto& [index, value] : parameters::SetFromJson(parts_->Repository(), values)) {
            parts_->Keep(index, value);
        }
    });
}

void CEffectJob::SetJson(const std::string& values) {
    nlohmann::ordered_json parsed;
    try {
        parsed = ParseStrictJson(values);
    } catch (const std::runtime_error& error) {
        throw CJobError(EJobFault::Refused, Tr("the values are not usable: {}", error.what()),
                        Tr("an object of names to values is expected"));
    }
    Set(parsed);
}

void CEffectJob::Reset() {
    parts_->given.clear();
    parts_->Define();
}

std::string CEffectJob::Value(const std::string& parameter) const {
    return WithJobErrors(
        [&] { return parameters::ToText(parameters::Find(parts_->Repository(), parameter)); });
}

void CEffectJob::TakePreset(const std::string& preset) {
    WithJobErrors([&] {
        const CJobLibrary::CScope scope(*parts_->library);  // names are those of its languages
        auto values = presets::Read(PresetFile(parts_->name, preset));
        const auto scaled = presets::TakeScaled(values, parts_->Repository());
        for (const auto& [index, value] : scaled) {
            values.erase(ToUtf8(parts_->Repository().At(index)->Name()));
        }
        Set(values);
        for (const auto& [index, value] : scaled) parts_->scaled[index] = value;
        parts_->Scale();
    });
}

std::string CEffectJob::SavePreset(const std::string& name, bool overwrite) const {
    return WithJobErrors(
        [&] { return presets::Save(parts_->name, name, Values(), overwrite).string(); });
}

nlohmann::ordered_json CEffectJob::Values() const {
    return parameters::ToJson(parts_->Repository());
}

void CEffectJob::CheckResources() const {
    CRunResources::Check(parts_->Repository(), *parts_->library->resources);
}

void CEffectJob::SetCanvas(CSize canvas) {
    TRef<CDocument> next;
    if (canvas != CSize{}) {
        next = new CDocument(canvas);
        if (parts_->document) {
            next->SetActiveImage(parts_->document->GetActiveImage());
            next->SetSelection(parts_->document->GetSelection());
        }
    }
    std::swap(parts_->document, next);
    try {
        WithJobErrors([&] { parts_->Define(); });
    } catch (const CJobError&) {
        std::swap(parts_->document, next);  // values and ranges are as they were
        parts_->Define();
        throw;
    }
}

void CEffectJob::SetPicture(const CRowIteratorBands& image, const CRowIterator& selection) {
    if (!parts_->document) SetCanvas({image.GetWidth(), image.GetHeight()});
    parts_->document->SetSelection(selection);
    parts_->document->SetActiveImage(image);
}

bool CEffectJob::Edit() {
    const CSelectedLanguage language(parts_->library->installation.data, parts_->library->language);
    const TRef<CExecutionContext> context(
        new CExecutionContext(parts_->document, parts_->library->resources, nullptr));
    CCmdEffect& command = *parts_->command;
    CRunResources::Settle(parts_->Repository(), *parts_->library->resources);
    const CErrorAutoThrow error = command.GetResourceData()->Edit(context.Get(), &command);
    parts_->given = parameters::CurrentValues(parts_->Repository());
    parts_->scaled.clear();
    if (error.Code() == TolmErrorCode::Cancelled) return false;
    if (!error.Failed()) return true;
    throw CJobError(EJobFault::Effect, Tr("the dialog failed with error {}: {}",
                                          static_cast<int>(error.Code()), error.Text()));
}

// Works on a clone and a document of its own, so that the job stays as it is.
SJobResult CEffectJob::Run(IProgressSink* sink) const {
    try {
        if (!parts_->document || !parts_->document->GetActiveImage().IsAttached()) {
            return {{}, CJobError(EJobFault::Refused, Tr("there is no picture to work on"))};
        }
        TRef<ICoreCommand> clone;
        parts_->command->Clone(clone.Receive()).ThrowIfFailed();
        auto& command = dynamic_cast<CCmdEffect&>(*clone.Get());
        const TRef<IResourceLibrary> resources(
            new CRunResources(parts_->Repository(), *parts_->library->resources));
        const TRef<CDocument> document(new CDocument(*parts_->document));
        const TRef<CExecutionContext> context(new CExecutionContext(document, resources, sink));
        const CErrorAutoThrow error = RunCommand(command, context.Get());
        if (error.Failed()) return {{}, ErrorOf(parts_->name, error)};
        return {document->GetActiveImage(), {}};
    } catch (const CJobError& error) {
        return {{}, error};
    } catch (const std::bad_alloc&) {
        return {{}, CJobError(EJobFault::Memory, Tr("there is not enough memory"))};
    } catch (const CNException& error) {
        return {{}, ErrorOf(parts_->name, error)};
    } catch (const std::exception& error) {
        return {{}, CJobError(EJobFault::Fault, error.what())};
    }
}
