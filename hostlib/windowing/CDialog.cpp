#include "host/windowing/CDialog.h"

#include <atomic>

#include "host/dialogs/CNNumEdit.h"
#include "host/windowing/Controls.h"
#include "hostlib/system/CResourceModule.h"
#include "hostlib/windowing/SDialogState.h"

namespace {

std::atomic<IToolkit*> g_toolkit = nullptr;

// Shows a dialog for a scope.
class CShown {
  public:
    CShown(SDialogState& windows, IDialogView* view) : windows_(windows) { windows_.view = view; }
    ~CShown() { windows_.view = nullptr; }
    CShown(const CShown&) = delete;
    CShown& operator=(const CShown&) = delete;

  private:
    SDialogState& windows_;
};

}  // namespace

void InstallToolkit(IToolkit* toolkit) { g_toolkit = toolkit; }
IToolkit* InstalledToolkit() { return g_toolkit; }

CDialog::CDialog(int template_id, CWnd* /*parent*/)
    : template_id_(template_id), windows_(std::make_unique<SDialogState>()) {}
CDialog::~CDialog() = default;

CErrorAutoThrow CDialog::LoadTemplate() {
    if (windows_->loaded) return {};
    return CatchErrors([&]() -> CErrorAutoThrow {
        const HMODULE resources = AfxGetResourceHandle();
        const std::string data = resources ? resources->DialogTemplate(template_id_) : "";
        if (data.empty()) {
            return {TolmErrorCode::NotFound,
                    "there is no dialog template " + std::to_string(template_id_)};
        }
        windows_->description = ParseDialogTemplate(template_id_, data);
        windows_->MakeControls();
        windows_->loaded = true;
        return {};
    });
}

bool CDialog::Create(int template_id, CWnd* /*parent*/) {
    template_id_ = template_id;
    return !LoadTemplate().Failed() && OnInitDialog();
}

int CDialog::DoModal() {
    IToolkit* toolkit = InstalledToolkit();
    IDialogModel* model = Model();
    if (!toolkit || !model) {
        throw CNException(TolmErrorCode::NotAvailable,
                          "a dialog cannot be shown: this program has no windows");
    }
    LoadTemplate().ThrowIfFailed();
    OnInitDialog();
    const std::unique_ptr<IDialogView> view = toolkit->Open(*model);
    const CShown shown(*windows_, view.get());
    const int result = view->RunModal();
    if (windows_->failure) throw CNException(*windows_->failure);
    return result;
}

void CDialog::EndDialog(int result) {
    if (windows_->view) windows_->view->EndModal(result);
}

bool CDialog::OnInitDialog() {
    UpdateData(false);
    return true;
}

void CDialog::DoDataExchange(CDataExchange* /*exchange*/) {}

void CDialog::UpdateData(bool save) {
    CDataExchange exchange{*this, save};
    DoDataExchange(&exchange);
}

void CDialog::OnOK() {
    UpdateData(true);
    EndDialog(IDOK);
}

void CDialog::OnCancel() { EndDialog(IDCANCEL); }

void CDialogEx::OnActivate(SMessage& /*message*/) {}
void CDialogEx::OnHScroll(SMessage& /*message*/) {}
void CDialogEx::OnEraseBkgnd(SMessage& /*message*/) {}

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
    if (!exchange->save) control.Attach(exchange->dialog, id);
}

void DDX_Text(CDataExchange* exchange, int id, std::int32_t& value) {
    CNNumEdit field;
    if (!field.Attach(exchange->dialog, id)) return;
    if (exchange->save) {
        value = field.GetValue();
    } else {
        field.SetValue(value);
    }
}

void DDX_Check(CDataExchange* exchange, int id, std::int32_t& value) {
    CButton box;
    if (!box.Attach(exchange->dialog, id)) return;
    if (exchange->save) {
        value = box.GetCheck() ? 1 : 0;
    } else {
        box.SetCheck(value != 0);
    }
}
