#include "hostlib/windowing/CHeadlessToolkit.h"

class CHeadlessToolkit::CView final : public IDialogView {
  public:
    CView(CHeadlessToolkit& toolkit, IDialogModel& model) : toolkit_(toolkit), model_(model) {}

    int RunModal() override {
        toolkit_.script_(model_);
        return result_;
    }
    void EndModal(int result) override { result_ = result; }
    void ControlChanged(const SControlState& control) override {
        toolkit_.changed_.insert(control.id);
    }
    void PreviewChanged() override { ++toolkit_.previews_; }
    void HistoryChanged() override {}
    void DropperChanged(bool enabled) override { toolkit_.dropper_.push_back(enabled); }
    void ShowMessage(const CString& text) override { toolkit_.messages_.push_back(text); }

  private:
    CHeadlessToolkit& toolkit_;
    IDialogModel& model_;
    int result_ = IDCANCEL;
};

std::unique_ptr<IDialogView> CHeadlessToolkit::Open(IDialogModel& model) {
    return std::make_unique<CView>(*this, model);
}
