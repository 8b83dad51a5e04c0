#include "hostlib/dialogs/CPreviewSession.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <utility>

#include "host/dialogs/CColorDropper.h"
#include "host/dialogs/CResourceSelectDlg.h"
#include "hostlib/commands/CDocument.h"
#include "hostlib/core/WholeNumber.h"
#include "hostlib/parameters/CommandLine.h"
#include "hostlib/parameters/ParameterValues.h"
#include "hostlib/parameters/PresetLibrary.h"
#include "hostlib/parameters/Presets.h"

namespace {

// Whether the text is a whole number, blanks around it set aside; `value` takes it.
bool ParseNumber(const CString& typed, int& value) {
    std::string text = ToUtf8(typed);
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return false;
    text = text.substr(first, text.find_last_not_of(" \t") - first + 1);
    const std::optional<std::int64_t> number = WholeNumber(text);
    if (!number || !std::in_range<int>(*number)) return false;
    value = static_cast<int>(*number);
    return true;
}

nlohmann::ordered_json ReadPreset(const std::string& effect, const std::string& id) {
    const std::optional<presets::SPreset> preset = presets::Find(effect, id);
    return presets::Read(preset ? preset->file : presets::FileOf(effect, id));
}

}  // namespace

CPreviewSession::CPreviewSession(CPreviewChild& dialog, SDialogState& windows)
    : dialog_(dialog), windows_(windows), random_(std::random_device()()) {}

// Every action of the user passes here: a fault ends the dialog, which reports it to whoever opened
// it.
template <class Action>
void CPreviewSession::Guarded(Action&& action) {
    try {
        action();
    } catch (const CNException& error) {
        EndWith(error);
    } catch (const std::exception& error) {
        EndWith(CNException(TolmErrorCode::NotCreated, error.what()));
    }
    const bool enabled = DropperEnabled();
    if (enabled != dropper_reported_ && windows_.view) windows_.view->DropperChanged(enabled);
    dropper_reported_ = enabled;
}

void CPreviewSession::EndWith(const CNException& error) {
    windows_.failure = error;
    dialog_.EndDialog(IDCANCEL);
}

void CPreviewSession::Notify(unsigned message, int code, int id, void* data) {
    SMessage sent{message, code, id, data};
    Guarded([&] { dialog_.Dispatch(sent); });
}

SControlState* CPreviewSession::Usable(int id, EControlKind kind) {
    SControlState* state = windows_.Find(id);
    return state && state->kind == kind && state->enabled ? state : nullptr;
}

const SControlState& CPreviewSession::Control(int id) const {
    static const SControlState none;
    const SControlState* state = windows_.Find(id);
    return state ? *state : none;
}

std::string CPreviewSession::EffectName() const {
    return ToUtf8(dialog_.Command().GetResourceData()->GetComponentName());
}

CString CPreviewSession::ToolTip(int id) {
    TOOLTIPTEXTW info;
    info.flags = TOOLTIPTEXTW::TTF_IDISHWND;
    info.id = id;
    Notify(WM_NOTIFY, TTN_GETDISPINFOW, id, &info);
    return info.text;
}

CString CPreviewSession::Description(int id) const {
    const IParameterRepository* repository = dialog_.Repository();
    const IParameter* parameter = repository ? repository->At(dialog_.ParameterOf(id)) : nullptr;
    return parameter ? parameter->Description() : CString();
}

void CPreviewSession::Type(int id, const CString& text) {
    SControlState* field = Usable(id, EControlKind::Number);
    if (!field || field->text == text) return;
    int value = 0;
    field->text = text;
    field->wrong = !ParseNumber(text, value) || value < field->minimum || value > field->maximum;
    const bool changes = !field->wrong && value != field->value;
    if (changes) field->value = value;
    windows_.Show(*field);
    if (changes) Notify(WM_COMMAND, EN_CHANGE, id);
}

void CPreviewSession::Step(int id, int by) {
    const SControlState* field = Usable(id, EControlKind::Number);
    if (!field || field->maximum < field->minimum) return;
    const std::int64_t stepped =
        std::clamp<std::int64_t>(std::int64_t{field->value} + by, field->minimum, field->maximum);
    Type(id, std::to_wstring(stepped));
}

void CPreviewSession::Click(int id) {
    if (SControlState* box = Usable(id, EControlKind::Check)) {
        box->value = box->value ? 0 : 1;
        windows_.Show(*box);
        Notify(WM_COMMAND, BN_CLICKED, id);
    } else if (Usable(id, EControlKind::Button)) {
        Notify(WM_COMMAND, BN_CLICKED, id);
    }
}

void CPreviewSession::PickColour(int id, COLORREF colour) {
    SControlState* swatch = Usable(id, EControlKind::Swatch);
    if (!swatch) return;
    swatch->colour = colour & 0xFFFFFFU;
    windows_.Show(*swatch);
    Notify(WM_COMMAND, BN_CLICKED, id);
}

void CPreviewSession::Turn(int id, int angle) {
    SControlState* dial = Usable(id, EControlKind::Dial);
    constexpr int kFullTurn = 360;
    const int turned = (angle % kFullTurn + kFullTurn) % kFullTurn;
    if (!dial || turned == dial->value) return;
    dial->value = turned;
    windows_.Show(*dial);
    Notify(WM_COMMAND, RN_ROTATED, id);
}

void CPreviewSession::Choose(int id, int entry) {
    SControlState* list = Usable(id, EControlKind::List);
    if (!list) list = Usable(id, EControlKind::Resource);
    if (!list || entry < 0 || entry >= static_cast<int>(list->entries.size())) return;
    list->selected = entry;
    windows_.Show(*list);
    Notify(WM_COMMAND, CBN_SELENDOK, id);
}

void CPreviewSession::OpenLibrary(int id) {
    if (const CResourceSelectDlg* library = dialog_.ResourceListOf(id)) {
        ChooseCategory(id, library->GetCategory());
    }
}

void CPreviewSession::ChooseCategory(int id, const CString& category) {
    CResourceSelectDlg* library = dialog_.ResourceListOf(id);
    if (!library) return;
    Guarded([&] {
        const CString shown = library->GetCurItem();
        library->SetCategory(category);
        library->BuildResourceList();
        if (!shown.IsEmpty()) library->SelectItem(shown);
    });
}

void CPreviewSession::ChooseView(int id, int view) {
    if (CResourceSelectDlg* library = dialog_.ResourceListOf(id)) library->SetCurView(view);
}

CRowIteratorBands CPreviewSession::EntryPicture(int id, int entry) {
    CRowIteratorBands picture;
    const CResourceSelectDlg* library = dialog_.ResourceListOf(id);
    if (!library || library->LoadItemImage(entry, picture).Failed()) return {};
    return picture;
}

void CPreviewSession::Activate(bool active, bool to_own_window) {
    SActivation activation{active, to_own_window ? &dialog_ : nullptr};
    Notify(WM_ACTIVATE, 0, 0, &activation);
}

void CPreviewSession::Ok() {
    Guarded([&] { dialog_.OnOK(); });
}

void CPreviewSession::Cancel() {
    Guarded([&] { dialog_.OnCancel(); });
}

SPreviewSnapshot CPreviewSession::Snapshot() const {
    SPreviewSnapshot snapshot;
    TRef<ICoreCommand> clone;
    if (dialog_.Command().Clone(clone.Receive()).Failed()) return snapshot;
    snapshot.command = dynamic_cast<CCmdEffect*>(clone.Get());
    snapshot.context = dialog_.ExecutionContext();
    if (snapshot.command) snapshot.command->Setup(snapshot.context.Get()).Ignore();
    if (INGLGraphic* graphic = snapshot.context->Graphic()) {
        snapshot.source = graphic->GetActiveImage();
        snapshot.selection = graphic->GetSelection();
    }
    return snapshot;
}

bool CPreviewSession::DropperEnabled() const {
    const auto* dropper = dynamic_cast<const CColorDropper*>(&dialog_);
    return dropper && dropper->IsEnabled();
}

void CPreviewSession::AimDropper(int swatch_id) {
    auto* dropper = dynamic_cast<CColorDropper*>(&dialog_);
    if (dropper && Usable(swatch_id, EControlKind::Swatch)) dropper->AimAt(swatch_id);
}

void CPreviewSession::PickFromPicture(COLORREF colour) {
    if (!DropperEnabled()) return;
    Guarded([&] { dynamic_cast<CColorDropper&>(dialog_).OnColorDropperLeft(colour & 0xFFFFFFU); });
}

void CPreviewSession::ShowParameters() {
    dialog_.LoadParameters();
    PreviewChanged();
}

// `change` gets the repository. What was before can be taken back.
template <class Change>
void CPreviewSession::ChangeAll(Change&& change) {
    IParameterRepository* repository = dialog_.Repository();
    if (!repository) return;
    parameters::Values before = parameters::Capture(*repository);
    change(*repository);
    if (parameters::Capture(*repository) == before) return;
    undo_.push_back(std::move(before));
    Guarded([&] { ShowParameters(); });
}

void CPreviewSession::ResetAll() {
    ChangeAll([](IParameterRepository& repository) {
        for (IParameter* parameter : parameters::All(repository)) {
            parameters::SetDefault(*parameter);
        }
    });
}

void CPreviewSession::Reset(int control_id) {
    ChangeAll([&](IParameterRepository& repository) {
        IParameter* parameter = repository.At(dialog_.ParameterOf(control_id));
        if (parameter) parameters::SetDefault(*parameter);
    });
}

void CPreviewSession::Randomise() {
    ChangeAll([&](IParameterRepository& repository) {
        for (IParameter* parameter : parameters::All(repository)) {
            parameters::SetRandom(*parameter, random_);
        }
        dialog_.ReconcileParameters();
    });
}

void CPreviewSession::Undo() {
    if (undo_.empty()) return;
    parameters::Restore(*dialog_.Repository(), undo_.back());
    undo_.pop_back();
    Guarded([&] { ShowParameters(); });
}

std::vector<SPresetEntry> CPreviewSession::Presets() const {
    std::vector<SPresetEntry> entries;
    for (const presets::SPreset& preset : presets::List(EffectName())) {
        entries.push_back(
            {preset.id, FromUtf8(preset.name), FromUtf8(preset.description), preset.ships});
    }
    return entries;
}

CErrorAutoThrow CPreviewSession::LoadPreset(const std::string& id) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        try {
            const auto preset = ReadPreset(EffectName(), id);
            const INGLGraphic* graphic = dialog_.ExecutionContext()->Graphic();
            const CSize canvas =
                graphic ? CSize{graphic->GetWidth(), graphic->GetHeight()} : CSize();
            ChangeAll([&](IParameterRepository& repository) {
                parameters::SetFromJson(repository,
                                        presets::ForPicture(preset, repository, canvas));
            });
            return {};
        } catch (const parameters::CRefused& refused) {
            return {TolmErrorCode::UnusableInput, refused.what()};
        }
    });
}

SPreviewSnapshot CPreviewSession::PresetSnapshot(const std::string& id,
                                                 const CRowIteratorBands& picture) const {
    const CSize size{picture.GetWidth(), picture.GetHeight()};
    const TRef<CDocument> document(new CDocument(size));
    document->SetActiveImage(picture);
    const TRef<ICommandExecutionContext> shown = dialog_.ExecutionContext();
    SPreviewSnapshot snapshot{{}, {}, picture, {}};
    snapshot.context = new CExecutionContext(document, shown->ResourceLibrary(), nullptr);
    try {
        const auto preset = ReadPreset(EffectName(), id);
        TRef<ICoreCommand> clone;
        dialog_.Command().Clone(clone.Receive()).ThrowIfFailed();
        auto* command = dynamic_cast<CCmdEffect*>(clone.Get());
        IParameterRepository& repository = *command->BoundRepository();
        for (IParameter* parameter : parameters::All(repository)) {
            parameters::SetDefault(*parameter);
        }
        parameters::SetFromJson(repository, presets::ForPicture(preset, repository, size));
        command->Setup(snapshot.context.Get()).ThrowIfFailed();
        snapshot.command = command;
    } catch (const std::exception&) {
        return snapshot;  // the preset says what is wrong with it when it is loaded
    }
    return snapshot;
}

CErrorAutoThrow CPreviewSession::SavePreset(const std::string& name, bool overwrite) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        dialog_.StoreParameters();
        presets::Save(EffectName(), name, parameters::ToJson(*dialog_.Repository()), overwrite);
        return {};
    });
}

CErrorAutoThrow CPreviewSession::DeletePreset(const std::string& name) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        presets::Remove(EffectName(), name);
        return {};
    });
}

std::string CPreviewSession::CommandLine(const std::string& input,
                                         const std::string& output) const {
    return ApplyCommandLine(EffectName(), input, output, *dialog_.Repository());
}

void CPreviewSession::TakeLastValues() {
    IParameterRepository* repository = dialog_.Repository();
    if (!repository) return;
    const std::vector<IParameter*> all = parameters::All(*repository);
    const auto is_default = [](const IParameter* p) { return parameters::HasDefault(*p); };
    if (!std::all_of(all.begin(), all.end(), is_default)) return;
    const nlohmann::ordered_json last = presets::Remembered(EffectName());
    for (const auto& [name, value] : last.items()) {
        try {
            parameters::SetFromJson(*repository, {{name, value}});
        } catch (const parameters::CRefused&) {
            continue;  // a value of a larger canvas, say: this one keeps its default
        }
    }
}

void CPreviewSession::KeepValues() const {
    try {
        presets::Remember(EffectName(), parameters::ToJson(*dialog_.Repository()));
    } catch (const CNException&) {
        return;  // where nothing can be written, the next run begins with the defaults
    }
}

void CPreviewSession::PreviewChanged() const {
    if (windows_.view) windows_.view->PreviewChanged();
}

void CPreviewSession::ShowMessage(const CString& text) const {
    if (windows_.view) windows_.view->ShowMessage(text);
}
