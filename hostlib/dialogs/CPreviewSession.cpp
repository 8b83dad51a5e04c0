#include "hostlib/dialogs/CPreviewSession.h"

#include <fmt/format.h>

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

// The whole number that a text is, blanks around it set aside; the longest ones as the ends of the
// type's range.
std::optional<std::int64_t> ParseNumber(const CString& typed) {
    std::string text = ToUtf8(typed);
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    text = text.substr(first, text.find_last_not_of(" \t") - first + 1);
    return WholeNumber(text);
}

bool IsInRange(const SControlState& field, std::int64_t value) {
    return value >= field.minimum && value <= field.maximum;
}

// Whether a key at the end of one text makes the other of it.
bool OneCharacterApart(const CString& one, const CString& other) {
    const std::wstring& a = one.Text();
    const std::wstring& b = other.Text();
    if (a.size() > b.size()) return a.size() == b.size() + 1 && a.starts_with(b);
    return b.size() == a.size() + 1 && b.starts_with(a);
}

CString ShownValue(const SControlState& control) {
    const auto chosen = static_cast<std::size_t>(control.selected);
    switch (control.kind) {
        case EControlKind::Check:
            return control.value ? L"\u2611" : L"\u2610";
        case EControlKind::Swatch: {
            const CColorRef c{control.colour};
            return FromUtf8(fmt::format("#{:02X}{:02X}{:02X}", c.Red(), c.Green(), c.Blue()));
        }
        case EControlKind::List:
        case EControlKind::Resource:
            return chosen < control.entries.size() ? control.entries[chosen].text : CString();
        default:
            return std::to_wstring(control.value);
    }
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
    const bool goes_on = typed_ == id && OneCharacterApart(field->text, text);
    if (!goes_on) before_ = field->value;
    typed_ = id;
    const std::optional<std::int64_t> number = ParseNumber(text);
    const int shown = field->value;
    field->text = text;
    field->wrong = !number || !IsInRange(*field, *number);
    if (!field->wrong) field->value = static_cast<int>(*number);
    if (field->wrong && IsInRange(*field, before_)) field->value = before_;
    windows_.Show(*field);
    field->typing = true;
    if (field->value != shown) Changed(id, WM_COMMAND, EN_CHANGE);
    field->typing = false;
    HistoryChanged();
}

void CPreviewSession::Leave(int id) {
    const SControlState* field = Usable(id, EControlKind::Number);
    if (field && field->wrong && field->minimum <= field->maximum) {
        const std::int64_t number = ParseNumber(field->text).value_or(field->value);
        Type(id, std::to_wstring(std::clamp<std::int64_t>(number, field->minimum, field->maximum)));
    }
    typed_ = 0;
    EndChange();
}

void CPreviewSession::Step(int id, int by) {
    const SControlState* field = Usable(id, EControlKind::Number);
    if (!field || field->maximum < field->minimum) return;
    const std::int64_t stepped =
        std::clamp<std::int64_t>(std::int64_t{field->value} + by, field->minimum, field->maximum);
    typed_ = 0;
    Type(id, std::to_wstring(stepped));
    typed_ = 0;
}

void CPreviewSession::Click(int id) {
    if (SControlState* box = Usable(id, EControlKind::Check)) {
        EndChange();
        box->value = box->value ? 0 : 1;
        windows_.Show(*box);
        Changed(id, WM_COMMAND, BN_CLICKED);
        const IParameterRepository* repository = dialog_.Repository();
        const IParameter* stored = repository ? repository->At(dialog_.ParameterOf(id)) : nullptr;
        if (stored && stored->Number() != box->value) {
            unstored_ = {SHistoryStep::EKind::Value, id, ShownValue(*box)};
        }
        EndChange();
        HistoryChanged();
    } else if (Usable(id, EControlKind::Button)) {
        Notify(WM_COMMAND, BN_CLICKED, id);
    }
}

void CPreviewSession::PickColour(int id, COLORREF colour) {
    SControlState* swatch = Usable(id, EControlKind::Swatch);
    if (!swatch) return;
    swatch->colour = colour & 0xFFFFFFU;
    windows_.Show(*swatch);
    Changed(id, WM_COMMAND, BN_CLICKED);
}

// Dialogs listen to a dial's own notification, some to that of a field as well.
void CPreviewSession::Turn(int id, int angle) {
    SControlState* dial = Usable(id, EControlKind::Dial);
    constexpr int kFullTurn = 360;
    const int turned = (angle % kFullTurn + kFullTurn) % kFullTurn;
    if (!dial || turned == dial->value) return;
    dial->value = turned;
    windows_.Show(*dial);
    Changed(id, WM_COMMAND, RN_ROTATED);
    Changed(id, WM_COMMAND, EN_CHANGE);
}

void CPreviewSession::Choose(int id, int entry) {
    SControlState* list = Usable(id, EControlKind::List);
    if (list) EndChange();
    if (!list) list = Usable(id, EControlKind::Resource);
    if (!list || entry < 0 || entry >= static_cast<int>(list->entries.size())) return;
    list->selected = entry;
    windows_.Show(*list);
    Changed(id, WM_COMMAND, CBN_SELENDOK);
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

void CPreviewSession::Store() {
    Guarded([&] {
        dialog_.UpdateData(true);
        dialog_.StoreParameters();
    });
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
    auto& dropper = dynamic_cast<CColorDropper&>(dialog_);
    const std::vector<int> swatches = Template().ControlsOf(EControlKind::Swatch);
    const bool aimed = Usable(dropper.Target(), EControlKind::Swatch);
    const int swatch = aimed || swatches.empty() ? dropper.Target() : swatches.front();
    EndChange();
    const CColorRef c{colour & 0xFFFFFFU};
    const auto name = fmt::format("#{:02X}{:02X}{:02X}", c.Red(), c.Green(), c.Blue());
    Recorded({SHistoryStep::EKind::Value, swatch, FromUtf8(name)},
             [&] { Guarded([&] { dropper.OnColorDropperLeft(c.value); }); });
    EndChange();
}

void CPreviewSession::ShowParameters() {
    dialog_.LoadParameters();
    PreviewChanged();
}

// Runs an action of the user and makes it a step of the history, if it changed any value.
template <class Action>
void CPreviewSession::Recorded(const SHistoryStep& step, Action&& action) {
    IParameterRepository* repository = dialog_.Repository();
    if (history_.empty() && repository) {
        SState& opened = history_.emplace_back();
        opened.values = parameters::Capture(*repository);
        opened.mix = mix_;
    }
    StoreUnstored();
    action();
    Record(step);
}

void CPreviewSession::Changed(int id, unsigned message, int code) {
    Recorded({SHistoryStep::EKind::Value, id, ShownValue(Control(id))},
             [&] { Notify(message, code, id); });
}

void CPreviewSession::Record(const SHistoryStep& step) {
    IParameterRepository* repository = dialog_.Repository();
    if (!repository || history_.empty()) return;
    parameters::Values now = parameters::Capture(*repository);
    const SState& shown = history_[static_cast<std::size_t>(position_)];
    if (now == shown.values && mix_ == shown.mix) return;
    using EKind = SHistoryStep::EKind;
    const bool value = step.kind == EKind::Value || step.kind == EKind::Mix;
    const bool goes_on =
        open_ && value && shown.step.kind == step.kind &&
        dialog_.ParameterOf(shown.step.control) == dialog_.ParameterOf(step.control);
    if (!goes_on) ++position_;
    history_.resize(static_cast<std::size_t>(position_));
    SState& reached = history_.emplace_back();
    reached.step = step;
    reached.values = std::move(now);
    reached.mix = mix_;
    open_ = value;
    HistoryChanged();
}

// What is back where it began is no step.
void CPreviewSession::EndChange() {
    if (open_ && position_ > 0) {
        const auto last = history_.begin() + position_;
        const auto before = std::prev(last);
        if (last->values == before->values && last->mix == before->mix) {
            history_.erase(last);
            --position_;
            HistoryChanged();
        }
    }
    open_ = false;
}

void CPreviewSession::StoreUnstored() {
    if (!unstored_) return;
    const SHistoryStep step = *unstored_;
    unstored_.reset();
    Guarded([&] { dialog_.StoreParameters(); });
    Record(step);
    EndChange();
}

void CPreviewSession::HistoryChanged() const {
    if (windows_.view) windows_.view->HistoryChanged();
}

// A field whose text is wrong while its value is not; 0 for none.
int CPreviewSession::WrongField() const {
    for (const auto& [id, state] : windows_.controls) {
        if (state.wrong && IsInRange(state, state.value)) return id;
    }
    return 0;
}

// A wrong text is what there is to undo first.
void CPreviewSession::Undo() {
    StoreUnstored();
    EndChange();
    const int wrong = WrongField();
    if (!wrong) return GoTo(position_ - 1);
    Type(wrong, std::to_wstring(Control(wrong).value));
    typed_ = 0;
}

std::vector<SHistoryStep> CPreviewSession::History() const {
    std::vector<SHistoryStep> steps;
    for (const SState& state : history_) steps.push_back(state.step);
    return steps;
}

void CPreviewSession::GoTo(int state) {
    StoreUnstored();
    EndChange();
    if (state < 0 || state >= static_cast<int>(history_.size()) || state == position_) return;
    position_ = state;
    typed_ = 0;
    mix_ = history_[static_cast<std::size_t>(state)].mix;
    parameters::Restore(*dialog_.Repository(), history_[static_cast<std::size_t>(state)].values);
    Guarded([&] { ShowParameters(); });
    HistoryChanged();
}

// `change` gets the repository.
template <class Change>
void CPreviewSession::ChangeAll(const SHistoryStep& step, Change&& change) {
    IParameterRepository* repository = dialog_.Repository();
    if (!repository) return;
    EndChange();
    Recorded(step, [&] {
        const parameters::Values before = parameters::Capture(*repository);
        const SLayerMix mix_before = mix_;
        change(*repository);
        typed_ = 0;
        const bool changed = mix_ != mix_before || parameters::Capture(*repository) != before;
        if (!changed && !WrongField()) return;
        Guarded([&] {
            dialog_.ReconcileParameters();
            ShowParameters();
        });
    });
}

void CPreviewSession::SetMix(const SLayerMix& mix) {
    if (mix == mix_) return;
    const CString opacity = std::to_wstring(mix.opacity) + L" %";
    Recorded({SHistoryStep::EKind::Mix, 0, opacity}, [&] {
        mix_ = mix;
        PreviewChanged();
    });
}

void CPreviewSession::ResetAll() {
    ChangeAll({SHistoryStep::EKind::ResetAll, 0, {}}, [this](IParameterRepository& repository) {
        mix_ = {};
        for (IParameter* parameter : parameters::All(repository)) {
            parameters::SetDefault(*parameter);
        }
    });
}

void CPreviewSession::Reset(int control_id) {
    ChangeAll({SHistoryStep::EKind::Reset, control_id, {}}, [&](IParameterRepository& repository) {
        IParameter* parameter = repository.At(dialog_.ParameterOf(control_id));
        if (parameter) parameters::SetDefault(*parameter);
    });
}

void CPreviewSession::SetRandom(int control_id) {
    IParameter* parameter = dialog_.Repository()->At(dialog_.ParameterOf(control_id));
    if (!parameter) return;
    parameters::SetRandom(*parameter, random_);
    const std::vector<SListEntry>& entries = Control(control_id).entries;
    if (!dialog_.ResourceListOf(control_id) || entries.empty()) return;
    parameter->SetText(entries[parameters::RandomIndex(entries.size(), random_)].text);
}

// Only what the dialog shows: how the library is viewed, say, is no part of the picture. A dial's
// parameter is that of its field.
void CPreviewSession::Randomise() {
    ChangeAll({SHistoryStep::EKind::Random, 0, {}}, [&](IParameterRepository&) {
        for (const auto& [id, state] : windows_.controls) {
            if (state.kind != EControlKind::Dial) SetRandom(id);
        }
    });
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
            const std::optional<presets::SPreset> named = presets::Find(EffectName(), id);
            const SHistoryStep step{SHistoryStep::EKind::Preset, 0,
                                    FromUtf8(named ? named->name : id)};
            ChangeAll(step, [&](IParameterRepository& repository) {
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

void CPreviewSession::BeginWithPossibleValues() {
    IParameterRepository* repository = dialog_.Repository();
    if (!repository) return;
    TakeLastValues(*repository);
    for (IParameter* parameter : parameters::All(*repository)) {
        parameters::BringIntoRange(*parameter);
    }
}

void CPreviewSession::TakeLastValues(IParameterRepository& repository) const {
    const std::vector<IParameter*> all = parameters::All(repository);
    const auto is_default = [](const IParameter* p) { return parameters::HasDefault(*p); };
    if (!std::all_of(all.begin(), all.end(), is_default)) return;
    const nlohmann::ordered_json last = presets::Remembered(EffectName());
    for (const auto& [name, value] : last.items()) {
        try {
            parameters::SetFromJson(repository, {{name, value}});
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
