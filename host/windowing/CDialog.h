#pragma once

#include <cstdint>
#include <memory>

#include "host/core/CErrorAutoThrow.h"
#include "host/windowing/CWnd.h"

struct IDialogModel;
struct SDialogState;

// End codes of a modal dialog.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

// Which way values go between a dialog's members and its controls.
struct CDataExchange {
    CDialog& dialog;
    bool save;  // from the controls into the members
};

// A dialog made from a template of the current resource module.
class HOST_API CDialog : public CWnd {
  public:
    ~CDialog() override;

    // Makes the controls from the template, unless that has been done; error 104 when the current
    // resource module has no such template.
    CErrorAutoThrow LoadTemplate();
    // Makes the dialog without running it; false when there is no template.
    bool Create(int template_id, CWnd* parent);
    // Runs the dialog until it ends and answers the end code. Throws CNException: 103 when no
    // window can be shown here, and whatever stopped the dialog.
    virtual int DoModal();
    void EndDialog(int result);

    // Fills the controls before they are shown.
    virtual bool OnInitDialog();
    virtual void DoDataExchange(CDataExchange* exchange);
    void UpdateData(bool save);
    virtual void OnOK();
    virtual void OnCancel();

  protected:
    CDialog(int template_id, CWnd* parent);
    // Who speaks for the dialog to a toolkit; null: it cannot be shown.
    virtual IDialogModel* Model() { return nullptr; }
    SDialogState& Windows() const { return *windows_; }

  private:
    friend class CWnd;
    int template_id_;
    std::unique_ptr<SDialogState> windows_;
};

// A dialog with the handlers that the framework brings.
class HOST_API CDialogEx : public CDialog {
  protected:
    using CDialog::CDialog;
    void OnActivate(SMessage& message);
    void OnHScroll(SMessage& message);
    void OnEraseBkgnd(SMessage& message);
};

// The parts of a data exchange: a control is attached, a number or a check mark goes either way.
HOST_API void DDX_Control(CDataExchange* exchange, int id, CWnd& control);
HOST_API void DDX_Text(CDataExchange* exchange, int id, std::int32_t& value);
HOST_API void DDX_Check(CDataExchange* exchange, int id, std::int32_t& value);
