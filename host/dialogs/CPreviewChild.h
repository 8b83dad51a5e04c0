#pragma once

#include <memory>

#include "host/commands/CCmdEffect.h"
#include "host/core/TRef.h"
#include "host/windowing/CDialog.h"

class CPreviewSession;
class CResourceSelectDlg;

// The base of the commands' dialogs. It owns the preview, OK and Cancel, presets, randomise, reset
// and the values of the last run; a dialog binds controls to the parameters of the command.
class HOST_API CPreviewChild : public CDialogEx {
  public:
    // Neither context nor command is null.
    CPreviewChild(int template_id, ICommandExecutionContext* context,
                  VCommandImplementation* command, CWnd* parent, int template_kind, bool reserved);
    ~CPreviewChild() override;

    // Begins with the values of the last run, unless the command comes with values of its own;
    // keeps the values of a run that ended with OK.
    int DoModal() override;
    bool OnInitDialog() override;
    void OnOK() override;

    // From the repository to the controls, if they exist yet, and back. May be called at any time;
    // throw CNException for what cannot be read or written.
    virtual void LoadParameters() = 0;
    virtual void StoreParameters() = 0;
    // Writes the text of a control's tool tip and answers 1, or answers 0.
    virtual int GetToolTipText(TOOLTIPTEXTW& info);

    // The index of the parameter that a control shows; -1 for none.
    virtual int ParameterOf(int control_id) const;
    // The library behind a resource control; null for other controls.
    virtual CResourceSelectDlg* ResourceListOf(int control_id);
    // Called when the repository got values by chance, before they are shown: brings the ones that
    // depend on each other together.
    virtual void ReconcileParameters();

    VCommandImplementation& Command() const { return *command_; }
    ICommandExecutionContext* ExecutionContext() const { return context_.Get(); }
    // Of the command; null when it has none.
    IParameterRepository* Repository() const { return command_->BoundRepository(); }

  protected:
    // The parameters are others: a preview is due.
    void PreviewDataUpdated(bool changed);
    // Tells the user of something that went wrong; the dialog stays open.
    void ShowMessage(const CString& text);
    const AFX_MSGMAP* GetMessageMap() const override;
    IDialogModel* Model() override;

  private:
    TRef<ICommandExecutionContext> context_;
    TRef<VCommandImplementation> command_;
    std::unique_ptr<CPreviewSession> session_;
};
