#pragma once

#include <optional>
#include <vector>

#include "host/core/RuntimeRandom.h"
#include "host/dialogs/CPreviewChild.h"
#include "hostlib/dialogs/ParameterState.h"
#include "hostlib/windowing/SDialogState.h"

// A preview dialog as its toolkit sees it: turns what the user does into notifications for the
// dialog, and holds what every dialog can do with its parameters as a whole.
class CPreviewSession final : public IDialogModel {
  public:
    CPreviewSession(CPreviewChild& dialog, SDialogState& windows);

    const SDialogTemplate& Template() const override { return windows_.description; }
    const SControlState& Control(int id) const override;
    std::string EffectName() const override;
    CString ToolTip(int id) override;
    CString Description(int id) const override;

    void Type(int id, const CString& text) override;
    void Leave(int id) override;
    void Step(int id, int by) override;
    void Click(int id) override;
    void PickColour(int id, COLORREF colour) override;
    void Turn(int id, int angle) override;
    void Choose(int id, int entry) override;
    void OpenLibrary(int id) override;
    void ChooseView(int id, int view) override;
    void ChooseCategory(int id, const CString& category) override;
    CRowIteratorBands EntryPicture(int id, int entry) override;

    void Activate(bool active, bool to_own_window) override;
    void Ok() override;
    void Store() override;
    void Cancel() override;

    SPreviewSnapshot Snapshot() const override;
    bool DropperEnabled() const override;
    void AimDropper(int swatch_id) override;
    void PickFromPicture(COLORREF colour) override;

    SLayerMix Mix() const override { return mix_; }
    void SetMix(const SLayerMix& mix) override;
    void ResetAll() override;
    void Reset(int control_id) override;
    void Randomise() override;

    void EndChange() override;
    bool CanUndo() const override { return position_ > 0 || unstored_ || WrongField(); }
    void Undo() override;
    bool CanRedo() const override { return position_ + 1 < static_cast<int>(history_.size()); }
    void Redo() override { GoTo(position_ + 1); }
    std::vector<SHistoryStep> History() const override;
    int HistoryPosition() const override { return position_; }
    void GoTo(int state) override;

    std::vector<SPresetEntry> Presets() const override;
    CErrorAutoThrow LoadPreset(const std::string& id) override;
    SPreviewSnapshot PresetSnapshot(const std::string& id,
                                    const CRowIteratorBands& picture) const override;
    CErrorAutoThrow SavePreset(const std::string& name, bool overwrite) override;
    CErrorAutoThrow DeletePreset(const std::string& name) override;

    std::string CommandLine(const std::string& input, const std::string& output) const override;

    // Values of the last run: taken over where the command has nothing but defaults, as far as they
    // are possible now; and kept. The dialog begins with no value that it would not take.
    void BeginWithPossibleValues();
    void KeepValues() const;
    void PreviewChanged() const;
    void ShowMessage(const CString& text) const;

  private:
    void TakeLastValues(IParameterRepository& repository) const;
    SControlState* Usable(int id, EControlKind kind);
    void Notify(unsigned message, int code, int id, void* data = nullptr);
    template <class Action>
    void Guarded(Action&& action);
    void EndWith(const CNException& error);
    template <class Action>
    void Recorded(const SHistoryStep& step, Action&& action);
    template <class Change>
    void ChangeAll(const SHistoryStep& step, Change&& change);
    void Changed(int id, unsigned message, int code);
    void Record(const SHistoryStep& step);
    void StoreUnstored();
    void HistoryChanged() const;
    int WrongField() const;
    void SetRandom(int control_id);
    void ShowParameters();

    CPreviewChild& dialog_;
    SDialogState& windows_;
    struct SState {
        SHistoryStep step;
        parameters::Values values;
        SLayerMix mix;
    };
    std::vector<SState> history_;  // empty before the first change
    SLayerMix mix_;
    int position_ = 0;   // of the state that is shown
    bool open_ = false;  // the next change of the same control belongs to the last step
    // A change that the dialog has shown, and stores with the next one.
    std::optional<SHistoryStep> unstored_;
    int typed_ = 0;   // the field that is being typed into,
    int before_ = 0;  // and its value before that
    CRuntimeRandom random_;
    bool dropper_reported_ = false;
};
