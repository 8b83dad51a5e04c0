#pragma once

#include <QDialog>
#include <QEventLoop>
#include <QTimer>
#include <memory>

#include "app/desktop/CPreviewEngine.h"
#include "app/desktop/IDesktop.h"
#include "hostlib/windowing/IToolkit.h"

class CBusyPanel;
class CControlPanel;
class CEffectList;
class CPresetList;
class CPreviewPane;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QSplitter;
class QToolButton;
class QVBoxLayout;

// A dialog on the screen: the preview at the left, the controls at the right, the buttons below.
class CDialogWindow final : public QDialog, public IDialogView {
  public:
    CDialogWindow(IDialogModel& model, const SDesktopOptions& options);
    ~CDialogWindow() override;

    int RunModal() override;
    void EndModal(int result) override;
    void ControlChanged(const SControlState& control) override;
    void PreviewChanged() override;
    void HistoryChanged() override;
    void DropperChanged(bool enabled) override;
    void ShowMessage(const CString& text) override;

    const CPreviewEngine& Engine() const { return *engine_; }
    CPreviewPane& Pane() { return *pane_; }

    // Escape: ends picking a colour, else stops a preview that is running, else cancels the dialog,
    // after a question when anything was changed.
    void reject() override;
    void accept() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QWidget* MakeViewBar();
    QWidget* MakePreview();
    QWidget* MakeControls();
    QWidget* MakeButtons();
    QWidget* MakeParts();
    QWidget* MakeMix();
    void AddResultButtons(QWidget& bar);
    void Apply();
    void ShareRoom();
    void BringFrameOnScreen();
    void GoOnWith(const std::string& effect);
    static bool IsMixer(const QObject* watched);
    void FillPresetMenu();
    void FillHistoryMenu();
    QString StepText(const SHistoryStep& step) const;
    void EndChangeWhenIdle();
    bool MayDiscard();
    void SetPicking(int swatch);
    void SavePreset();
    void DeletePreset(const QString& name);
    void LoadPreset(const std::string& id);
    void CopyCommandLine();
    bool Ask(const QString& question);
    void Report(const CErrorAutoThrow& error);

    // OK and Save as: makes the result and writes it. True when it is in its file; otherwise the
    // user knows why not, and the window is as it was.
    bool WriteResult(bool ask);
    bool WaitForPicture();
    QString AskOutputFile();
    bool AskHowToGoOn(const QString& error, bool& ask);
    void SetBusy(bool busy);

    void ShowFacts(const CRowIteratorBands& picture);
    void CheckLoading();
    void ShowProgress();
    void ShowStatus(const QString& text);
    void FetchPreview();
    void PickAt(QPoint pixel);
    void HoldOriginal(bool hold);
    void ReturnKey(const QKeyEvent& event);

    IDialogModel& model_;
    const SDesktopOptions& options_;
    CPreviewPane* pane_ = nullptr;
    CBusyPanel* busy_ = nullptr;
    std::vector<QWidget*> acting_;  // what a user changes something with
    CControlPanel* controls_ = nullptr;
    QLabel *status_ = nullptr, *facts_ = nullptr, *description_ = nullptr;
    QProgressBar* progress_ = nullptr;
    CPresetList* preset_list_ = nullptr;
    CEffectList* effects_ = nullptr;  // null where there is no host, as is its button
    QPushButton* effects_button_ = nullptr;
    QSplitter *parts_ = nullptr, *halves_ = nullptr;
    QSpinBox* opacity_ = nullptr;  // null without a host, as the next
    QComboBox* blend_ = nullptr;
    QPushButton *presets_ = nullptr, *undo_ = nullptr, *redo_ = nullptr, *history_ = nullptr;
    QString output_;            // the file of the result; empty: to be asked for
    bool replaces_ = false;     // whether the user wants it replaced if it exists
    QString said_, pick_hint_;  // what the status line says, and says instead while picking
    QTimer tick_, idle_;
    QEventLoop loop_;
    int result_;
    bool ended_ = false;
    bool return_pressed_ = false;
    std::uint64_t return_released_ = 0;       // when, on the screen's clock; 0: since then pressed
    bool loading_ = false;                    // the document has no picture yet
    std::unique_ptr<CPreviewEngine> engine_;  // gone before everything that it notifies
};
