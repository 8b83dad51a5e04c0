#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/commands/CCmdEffect.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/ColorRef.h"
#include "host/windowing/CDialog.h"
#include "hostlib/graphics/LayerBlend.h"
#include "hostlib/windowing/DialogTemplate.h"

// The border between dialogs and the toolkit that shows them. The host keeps what every control
// shows (SControlState) and what a user's action on it means (IDialogModel); a toolkit draws the
// one and reports the other. Everything here happens on the user-interface thread.

struct SListEntry {
    CString text;
    std::int64_t data = 0;
};

// A preset as a list shows it.
struct SPresetEntry {
    std::string id;  // what LoadPreset takes
    CString name;
    CString description;  // may be empty
    bool ships = false;   // with the program; else it is the user's own
};

// What the user did, as a history shows it. Opened is the state that everything began with.
struct SHistoryStep {
    enum class EKind { Opened, Value, Mix, Reset, ResetAll, Random, Preset };
    EKind kind = EKind::Opened;
    int control = 0;  // Value, Reset
    CString text;     // Value: what the control showed then. Mix: the opacity. Preset: its name
};

// What a control shows now. Which fields mean something depends on the kind.
struct SControlState {
    int id = 0;
    EControlKind kind = EControlKind::Label;
    CString text;  // Label, Check, Button: its text. Number: what stands in the field.
    bool enabled = true;
    int value = 0;                 // Number; Check: 0 or 1; Dial: degrees, clockwise from the top
    int minimum = 0, maximum = 0;  // Number, Dial
    bool wrong = false;            // Number: the text is no number within the range
    bool typing = false;           // Number: the user's text is being taken over, so it stays
    COLORREF colour = 0;           // Swatch
    std::vector<SListEntry> entries;  // List: the members. Resource: the names in the library.
    int selected = -1;                // List, Resource: the shown entry, -1 for none
    CRowIteratorBands picture;        // Resource: of the selected entry; unattached for none
    int view = 0;                     // Resource: 0 a list of names, 1 thumbnails
    std::vector<CString> categories;  // Resource: all that the library has of its kind
    CString category;                 // Resource: whose entries are shown; empty: of all
};

// All that a preview needs, independent of the dialog: it may be used on another thread and after
// the dialog has changed or gone. ICommandPreview::Preview of the command makes a picture.
struct SPreviewSnapshot {
    // A clone with the parameter values of now, set up for the context; empty without memory.
    TRef<CCmdEffect> command;
    TRef<ICommandExecutionContext> context;
    CRowIteratorBands source;  // the layer, shared with the document: read only
    CRowIterator selection;    // unattached when everything is selected
};

// An open dialog as its toolkit sees it. No operation throws: a fault of the dialog closes it and
// is reported by whoever opened it.
struct IDialogModel {
    // What to show. The template names every control; each has a state.
    virtual const SDialogTemplate& Template() const = 0;
    virtual const SControlState& Control(int id) const = 0;
    virtual std::string EffectName() const = 0;  // the component name, "Sandstone"
    // The tip of a control, at most 80 characters, and the longer description of what it sets
    // (for a status line and for screen readers). Either may be empty.
    virtual CString ToolTip(int id) = 0;
    virtual CString Description(int id) const = 0;

    // What the user does to a control. An action on a control that is disabled, or of another kind,
    // does nothing.
    // Number: the field's whole text. While it is no number of the range, the value stays; numbers
    // that were only the way to it, key by key, are taken back ("1" of "1,5").
    virtual void Type(int id, const CString& text) = 0;
    // Number: the typing is over. A number beyond the range gives way to the nearest, another wrong
    // text to the value.
    virtual void Leave(int id) = 0;
    virtual void Step(int id, int by) = 0;                 // Number: the spin button, wheel, arrows
    virtual void Click(int id) = 0;                        // Check, Button
    virtual void PickColour(int id, COLORREF colour) = 0;  // Swatch
    virtual void Turn(int id, int angle) = 0;              // Dial, degrees
    virtual void Choose(int id, int entry) = 0;            // List, Resource
    // Resource: the library is about to be shown, so its entries are read anew.
    virtual void OpenLibrary(int id) = 0;
    virtual void ChooseView(int id, int view) = 0;
    virtual void ChooseCategory(int id, const CString& category) = 0;
    // Resource: the picture of an entry; unattached when it cannot be read any more.
    virtual CRowIteratorBands EntryPicture(int id, int entry) = 0;

    // The window. `to_own_window`: the one that gets, or had, the focus is the dialog's own.
    virtual void Activate(bool active, bool to_own_window) = 0;
    virtual void Ok() = 0;
    // What the controls show goes into the parameters, as Ok would have it; the dialog stays open.
    virtual void Store() = 0;
    virtual void Cancel() = 0;

    // The preview. A new snapshot is due after each IDialogView::PreviewChanged.
    virtual SPreviewSnapshot Snapshot() const = 0;
    // The colour dropper: whether picking is on, which swatch takes a colour picked from the
    // picture (initially the first), and the picking.
    virtual bool DropperEnabled() const = 0;
    virtual void AimDropper(int swatch_id) = 0;
    virtual void PickFromPicture(COLORREF colour) = 0;

    // How the result is laid over the picture. Begins as it is, at 100 per cent.
    virtual SLayerMix Mix() const = 0;
    virtual void SetMix(const SLayerMix& mix) = 0;

    // All parameters, or that of one control, get their defaults; or random values within their
    // ranges: those that the dialog shows, an entry of the library included.
    virtual void ResetAll() = 0;
    virtual void Reset(int control_id) = 0;
    virtual void Randomise() = 0;

    // Every change can be taken back and made again. Changes of one field, dial, colour, mix or
    // library entry are one step until EndChange: a drag, say, or a burst of typing.
    virtual void EndChange() = 0;
    virtual bool CanUndo() const = 0;
    virtual void Undo() = 0;
    virtual bool CanRedo() const = 0;
    virtual void Redo() = 0;
    // The states, oldest first, each named by the step that led to it; which of them is shown; and
    // the way to any. Empty, and 0, before the first change.
    virtual std::vector<SHistoryStep> History() const = 0;
    virtual int HistoryPosition() const = 0;
    virtual void GoTo(int state) = 0;

    // Presets of this effect, the user's own before those that ship. A failure says what is wrong;
    // nothing is then changed.
    virtual std::vector<SPresetEntry> Presets() const = 0;
    virtual CErrorAutoThrow LoadPreset(const std::string& id) = 0;
    // What shows a preset on a picture, which takes the document's place; without a command when
    // the preset cannot be used.
    virtual SPreviewSnapshot PresetSnapshot(const std::string& id,
                                            const CRowIteratorBands& picture) const = 0;
    virtual CErrorAutoThrow SavePreset(const std::string& name, bool overwrite) = 0;
    virtual CErrorAutoThrow DeletePreset(const std::string& name) = 0;

    // The command line that does what the dialog shows, quoted for a shell.
    virtual std::string CommandLine(const std::string& input, const std::string& output) const = 0;

  protected:
    ~IDialogModel() = default;
};

// A dialog on the screen. It is made for one model, which outlives it.
struct IDialogView {
    virtual ~IDialogView() = default;
    // Shows the dialog until EndModal is called, and returns EndModal's result.
    virtual int RunModal() = 0;
    virtual void EndModal(int result) = 0;
    // A control's state is another one now. Also called for the control that the user acts on, so
    // showing again what is already shown does nothing (and moves no cursor).
    virtual void ControlChanged(const SControlState& control) = 0;
    // The parameters are others: a preview that is running is stale.
    virtual void PreviewChanged() = 0;
    // What can be undone or redone is something else now.
    virtual void HistoryChanged() = 0;
    // Colours can, or can no longer, be picked from the picture.
    virtual void DropperChanged(bool enabled) = 0;
    // Something that the user should know went wrong; the dialog stays open.
    virtual void ShowMessage(const CString& text) = 0;
};

struct IToolkit {
    virtual ~IToolkit() = default;
    // A view of the dialog, its controls in their states. Throws CNException, code 103, when no
    // window can be shown.
    virtual std::unique_ptr<IDialogView> Open(IDialogModel& model) = 0;
};

// The toolkit of the process, not owned; null: dialogs cannot be shown.
HOST_API void InstallToolkit(IToolkit* toolkit);
HOST_API IToolkit* InstalledToolkit();
