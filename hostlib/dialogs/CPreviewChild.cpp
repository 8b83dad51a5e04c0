#include "host/dialogs/CPreviewChild.h"

#include "hostlib/dialogs/CPreviewSession.h"

CPreviewChild::CPreviewChild(int template_id, ICommandExecutionContext* context,
                             VCommandImplementation* command, CWnd* parent, int /*template_kind*/,
                             bool /*reserved*/)
    : CDialogEx(template_id, parent),
      context_(context),
      command_(command),
      session_(std::make_unique<CPreviewSession>(*this, Windows())) {}
CPreviewChild::~CPreviewChild() = default;

int CPreviewChild::DoModal() {
    session_->BeginWithPossibleValues();
    const int result = CDialogEx::DoModal();
    if (result == IDOK) session_->KeepValues();
    return result;
}

bool CPreviewChild::OnInitDialog() { return CDialogEx::OnInitDialog(); }

void CPreviewChild::OnOK() {
    UpdateData(true);
    StoreParameters();
    EndDialog(IDOK);
}

int CPreviewChild::GetToolTipText(TOOLTIPTEXTW& /*info*/) { return 0; }
int CPreviewChild::ParameterOf(int /*control_id*/) const { return -1; }
CResourceSelectDlg* CPreviewChild::ResourceListOf(int /*control_id*/) { return nullptr; }
void CPreviewChild::ReconcileParameters() {}

void CPreviewChild::PreviewDataUpdated(bool changed) {
    if (changed) session_->PreviewChanged();
}

void CPreviewChild::ShowMessage(const CString& text) { session_->ShowMessage(text); }

const AFX_MSGMAP* CPreviewChild::GetMessageMap() const { return nullptr; }
IDialogModel* CPreviewChild::Model() { return session_.get(); }
