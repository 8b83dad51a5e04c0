#pragma once

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
    void Cancel() override;

    SPreviewSnapshot Snapshot() const override;
    bool DropperEnabled() const override;
    void AimDropper(int swatch_id) override;
    void PickFromPicture(COLORREF colour) override;

    void ResetAll() override;
    void Reset(int control_id) override;
    void Randomise() override;
    bool CanUndo() const override { return !undo_.empty(); }
    void Undo() override;

    std::vector<SPresetEntry> Presets() const override;
    CErrorAutoThrow LoadPreset(const std::string& id) override;
    SPreviewSnapshot PresetSnapshot(const std::string& id,
                                    const CRowIteratorBands& picture) const override;
    CErrorAutoThrow SavePreset(const std::string& name, bool overwrite) override;
    CErrorAutoThrow DeletePreset(const std::string& name) override;

    std::string CommandLine(const std::string& input, const std::string& output) const override;

    // Values of the last run: taken over where the command has nothing but defaults, as far as they
    // are possible now; and kept.
    void TakeLastValues();
    void KeepValues() const;
    void PreviewChanged() const;
    void ShowMessage(const CString& text) const;

  private:
    SControlState* Usable(int id, EControlKind kind);
    void Notify(unsigned message, int code, int id, void* data = nullptr);
    template <class Action>
    void Guarded(Action&& action);
    void EndWith(const CNException& error);
    template <class Change>
    void ChangeAll(Change&& change);
    void ShowParameters();

    CPreviewChild& dialog_;
    SDialogState& windows_;
    std::vector<parameters::Values> undo_;
    CRuntimeRandom random_;
    bool dropper_reported_ = false;
};
