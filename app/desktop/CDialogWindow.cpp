#include "app/desktop/CDialogWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidgetAction>

#include "app/desktop/CBusyPanel.h"
#include "app/desktop/CControlPanel.h"
#include "app/desktop/CPresetList.h"
#include "app/desktop/CPreviewPane.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Widgets.h"
#include "host/windowing/CDialog.h"

namespace {

constexpr int kTickMilliseconds = 50;
constexpr int kBurstMilliseconds = 800;  // a pause in typing that ends a step of the history
constexpr int kProgressSteps = 1000;
constexpr int kProgressHeight = 3;
constexpr int kDescriptionLines = 3;
constexpr int kButtonRoom = 10;  // beside a button's text
constexpr double kButtonScale = 1.25;
constexpr double kScreenShare = 0.92;  // of the screen that a window may take

QString FileNameOf(const std::string& path) {
    return QString::fromStdString(path).section('/', -1);
}

}  // namespace

CDialogWindow::CDialogWindow(IDialogModel& model, const SDesktopOptions& options)
    : model_(model),
      options_(options),
      output_(QString::fromStdString(options.output)),
      replaces_(options.overwrite),
      result_(IDCANCEL) {
    const SPreviewSnapshot snapshot = model.Snapshot();
    engine_ = std::make_unique<CPreviewEngine>([this] {
        QMetaObject::invokeMethod(
            this, [this] { FetchPreview(); }, Qt::QueuedConnection);
    });
    setWindowTitle(ToQt(model.Template().title) + " – " + FileNameOf(options.input));
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);

    auto* grid = new QGridLayout(this);
    grid->addWidget(MakePreview(), 0, 0);
    grid->addWidget(MakeControls(), 0, 1);
    grid->addWidget(MakeButtons(), 1, 0, 1, 2);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(0, 1);
    busy_ = new CBusyPanel(this);
    if (const QScreen* on = screen()) {
        resize(sizeHint().boundedTo(on->availableSize() * kScreenShare));
    }
    loading_ = !snapshot.source.IsAttached();
    ShowFacts(snapshot.source);
    connect(&tick_, &QTimer::timeout, this, [this] {
        CheckLoading();
        ShowProgress();
    });
    tick_.start(kTickMilliseconds);
    idle_.setSingleShot(true);
    connect(&idle_, &QTimer::timeout, this, [this] { EndChangeWhenIdle(); });
    qApp->installEventFilter(this);
    PreviewChanged();
}

CDialogWindow::~CDialogWindow() {
    qApp->removeEventFilter(this);
    engine_.reset();
}

void CDialogWindow::ShowFacts(const CRowIteratorBands& picture) {
    const CSize size = loading_ ? options_.size : CSize{picture.GetWidth(), picture.GetHeight()};
    const int depth = loading_ ? options_.depth : picture.GetPixelFormat().Is16bit() ? 16 : 8;
    pane_->SetPictureSize(size);
    facts_->setText(Text(EText::PictureFacts).arg(size.cx).arg(size.cy).arg(depth));
    if (loading_) ShowStatus(Text(EText::Loading));
}

// A picture that does not come leaves nothing to set an effect on.
void CDialogWindow::CheckLoading() {
    if (!loading_ || ended_ || !options_.picture_came || !options_.picture_came()) return;
    loading_ = false;
    const CRowIteratorBands picture = model_.Snapshot().source;
    if (!picture.IsAttached()) return model_.Cancel();
    ShowFacts(picture);
    PreviewChanged();
}

QWidget* CDialogWindow::MakeViewBar() {
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    acting_.push_back(bar);
    AddButton(*bar, "fit", Text(EText::Fit), {}, QKeySequence("Ctrl+0"), [this] { pane_->Fit(); });
    AddButton(*bar, "one-to-one", Text(EText::OneToOne), {}, QKeySequence("Ctrl+1"),
              [this] { pane_->ScaleTo(1); });
    const auto step = [&](const char* name, const QString& sign, EText tip, const QKeySequence& key,
                          double factor) {
        QPushButton* button =
            AddButton(*bar, name, sign, Text(tip), key, [this, factor] { pane_->ScaleBy(factor); });
        button->setAccessibleName(Text(tip));
        button->setFixedWidth(button->sizeHint().height() + 8);
    };
    step("smaller", "−", EText::Smaller, QKeySequence::ZoomOut, 1 / kButtonScale);
    scale_ = new QLabel;
    scale_->setObjectName("scale");
    scale_->setAccessibleName(Text(EText::Scale));
    scale_->setAlignment(Qt::AlignCenter);
    scale_->setMinimumWidth(fontMetrics().horizontalAdvance("1600 % "));
    layout->addWidget(scale_);
    step("larger", "+", EText::Larger, QKeySequence::ZoomIn, kButtonScale);
    QPushButton* split =
        AddButton(*bar, "split", Text(EText::Split), Text(EText::SplitTip), {}, [] {});
    split->setCheckable(true);
    connect(split, &QPushButton::toggled, this, [this](bool on) { pane_->SetSplit(on); });
    QPushButton* original =
        AddButton(*bar, "original", Text(EText::Original), Text(EText::OriginalTip), {}, [] {});
    connect(original, &QPushButton::pressed, this, [this] { HoldOriginal(true); });
    connect(original, &QPushButton::released, this, [this] { HoldOriginal(false); });
    layout->addStretch(1);
    return bar;
}

QWidget* CDialogWindow::MakePreview() {
    auto* preview = new QWidget;
    auto* layout = new QVBoxLayout(preview);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    pane_ = new CPreviewPane;
    pane_->setObjectName("preview");
    pane_->setAccessibleName(Text(EText::Preview));
    pane_->on_pick = [this](QPoint pixel) { PickAt(pixel); };
    progress_ = new QProgressBar;
    progress_->setRange(0, kProgressSteps);
    progress_->setTextVisible(false);
    progress_->setFixedHeight(kProgressHeight);
    progress_->setAccessibleName(Text(EText::Progress));
    progress_->setStyleSheet(
        "QProgressBar { border: none; background: transparent; }"
        "QProgressBar::chunk { background: palette(highlight); }");
    status_ = new QLabel;
    status_->setObjectName("status");
    facts_ = new QLabel;
    layout->addWidget(MakeViewBar());
    layout->addWidget(pane_, 1);
    layout->addWidget(progress_);
    auto* line = new QHBoxLayout;
    line->addWidget(status_, 1);
    line->addWidget(facts_);
    layout->addLayout(line);
    pane_->on_scale = [this] { ShowScale(); };
    return preview;
}

QWidget* CDialogWindow::MakeControls() {
    auto* side = new QWidget;
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    acting_.push_back(side);
    controls_ = new CControlPanel(model_, side);
    controls_->add_picture = options_.add_picture;
    controls_->on_pick = [this](int swatch) { SetPicking(swatch); };
    controls_->on_entered = [this](int control) {
        description_->setText(ToQt(model_.Description(control)));
    };
    description_ = new QLabel;
    description_->setWordWrap(true);
    description_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    description_->setContentsMargins(8, 0, 8, 0);
    description_->setFixedHeight(kDescriptionLines * fontMetrics().lineSpacing() + 2);
    layout->addWidget(controls_, 1);
    layout->addWidget(description_);
    return side;
}

QPushButton* CDialogWindow::AddButton(QWidget& bar, const char* name, const QString& text,
                                      const QString& tip, const QKeySequence& key,
                                      std::function<void()> action) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setAutoDefault(false);
    button->setMinimumWidth(button->sizeHint().width() + kButtonRoom);
    const QString keys = key.toString(QKeySequence::NativeText);
    button->setToolTip(keys.isEmpty() ? tip : tip.isEmpty() ? keys : tip + " (" + keys + ")");
    connect(button, &QPushButton::clicked, this, std::move(action));
    if (!key.isEmpty()) {
        connect(new QShortcut(key, this), &QShortcut::activated, button, [button] {
            if (button->isEnabled()) button->click();
        });
    }
    bar.layout()->addWidget(button);
    return button;
}

// The button's text becomes its name and the beginning of its tip.
void CDialogWindow::ShowAsIcon(QPushButton& button, const QIcon& icon) {
    const QString name = button.text().remove('&');
    button.setAccessibleName(name);
    button.setToolTip(name + ": " + button.toolTip());
    button.setText({});
    button.setIcon(icon);
    button.setMinimumWidth(button.sizeHint().width());
}

QWidget* CDialogWindow::MakeButtons() {
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 4, 0, 0);
    acting_.push_back(bar);
    presets_ = AddButton(*bar, "presets", Text(EText::Presets), {}, {}, [] {});
    presets_->setMenu(new QMenu(this));
    connect(presets_->menu(), &QMenu::aboutToShow, this, [this] { FillPresetMenu(); });
    AddButton(*bar, "reset-all", Text(EText::ResetAll), {}, {}, [this] { model_.ResetAll(); });
    AddButton(*bar, "randomise", Text(EText::Randomise), Text(EText::RandomiseTip),
              QKeySequence("Ctrl+R"), [this] { model_.Randomise(); });
    undo_ = AddButton(*bar, "undo", Text(EText::Undo), Text(EText::UndoTip), QKeySequence::Undo,
                      [this] { model_.Undo(); });
    redo_ = AddButton(*bar, "redo", Text(EText::Redo), Text(EText::RedoTip),
                      QKeySequence("Ctrl+Shift+Z"), [this] { model_.Redo(); });
    connect(new QShortcut(QKeySequence("Ctrl+Y"), this), &QShortcut::activated, redo_,
            &QPushButton::click);
    history_ = AddButton(*bar, "history", Text(EText::History), Text(EText::HistoryTip),
                         QKeySequence("Ctrl+H"), [] {});
    history_->setMenu(new QMenu(this));
    ShowAsIcon(*undo_, UndoIcon(palette()));
    ShowAsIcon(*redo_, RedoIcon(palette()));
    ShowAsIcon(*history_, HistoryIcon(palette()));
    connect(history_->menu(), &QMenu::aboutToShow, this, [this] { FillHistoryMenu(); });
    HistoryChanged();
    QPushButton* copy =
        AddButton(*bar, "copy", Text(EText::CopyCommandLine), Text(EText::CopyCommandLineTip),
                  QKeySequence("Ctrl+Shift+C"), [this] { CopyCommandLine(); });
    ShowAsIcon(*copy, CommandLineIcon(palette()));
    layout->addStretch(1);
    layout->addSpacing(24);
    if (options_.results) {
        QPushButton* save =
            AddButton(*bar, "save-as", Text(EText::SaveResultAs), Text(EText::SaveResultAsTip),
                      QKeySequence("Ctrl+Shift+S"), [this] {
                          if (!controls_->GoToWrongField()) WriteResult(true);
                      });
        ShowAsIcon(*save, SaveIcon(palette()));
    }
    QPushButton* ok = AddButton(*bar, "ok", Text(EText::Ok), {}, {}, [this] { accept(); });
    ok->setDefault(true);
    AddButton(*bar, "cancel", Text(EText::Cancel), {}, {}, [this] {
        engine_->Cancel();
        model_.Cancel();
    });
    return bar;
}

int CDialogWindow::RunModal() {
    setWindowModality(Qt::ApplicationModal);
    show();
    activateWindow();
    controls_->FocusFirst();
    if (!ended_) loop_.exec();
    engine_->Cancel();
    hide();
    return result_;
}

// The first end counts.
void CDialogWindow::EndModal(int result) {
    if (ended_) return;
    result_ = result;
    ended_ = true;
    loop_.quit();
}

void CDialogWindow::ControlChanged(const SControlState& control) { controls_->Show(control); }

void CDialogWindow::PreviewChanged() {
    engine_->Request(model_.Snapshot());
    ShowProgress();
}

void CDialogWindow::HistoryChanged() {
    undo_->setEnabled(model_.CanUndo());
    redo_->setEnabled(model_.CanRedo());
    history_->setEnabled(model_.CanUndo() || model_.CanRedo());
    idle_.start(kBurstMilliseconds);
}

// A button that is held is a drag that goes on, and an open colour dialog a choice that does.
void CDialogWindow::EndChangeWhenIdle() {
    const QWidget* modal = QApplication::activeModalWidget();
    const bool busy = QApplication::mouseButtons() != Qt::NoButton || (modal && modal != this);
    busy ? idle_.start(kBurstMilliseconds) : model_.EndChange();
}

QString CDialogWindow::StepText(const SHistoryStep& step) const {
    switch (step.kind) {
        case SHistoryStep::EKind::Opened:
            return Text(EText::AsOpened);
        case SHistoryStep::EKind::Value:
            return controls_->NameOf(step.control) + ": " + ToQt(step.text);
        case SHistoryStep::EKind::Reset:
            return Text(EText::ResetOne).arg(controls_->NameOf(step.control));
        case SHistoryStep::EKind::ResetAll:
            return Text(EText::ResetAll).remove('&');
        case SHistoryStep::EKind::Random:
            return Text(EText::Randomise).remove('&');
        case SHistoryStep::EKind::Preset:
            break;
    }
    return Text(EText::PresetStep).arg(ToQt(step.text));
}

void CDialogWindow::FillHistoryMenu() {
    model_.EndChange();
    QMenu& menu = *history_->menu();
    menu.clear();
    const std::vector<SHistoryStep> steps = model_.History();
    for (int i = 0; i < static_cast<int>(steps.size()); ++i) {
        QString text = StepText(steps[static_cast<std::size_t>(i)]);
        QAction* step =
            menu.addAction(text.replace("&", "&&"), this, [this, i] { model_.GoTo(i); });
        step->setCheckable(true);
        step->setChecked(i == model_.HistoryPosition());
    }
}

// The picture that colours are picked from is the one to see.
void CDialogWindow::SetPicking(int swatch) {
    pane_->SetPicking(swatch != 0);
    pick_hint_ = swatch ? Text(EText::PickHint).arg(controls_->NameOf(swatch)) : QString();
    ShowStatus(said_);
}

bool CDialogWindow::MayDiscard() { return !model_.CanUndo() || Ask(Text(EText::DiscardChanges)); }

void CDialogWindow::DropperChanged(bool enabled) { controls_->EnablePicking(enabled); }

void CDialogWindow::ShowMessage(const CString& text) {
    QMessageBox::warning(this, windowTitle(), ToQt(text));
}

void CDialogWindow::reject() {
    if (busy_->IsRunning()) return busy_->Stop();
    if (pane_->IsPicking()) return controls_->EndPicking();
    if (!engine_->IsBusy()) {
        if (MayDiscard()) model_.Cancel();
        return;
    }
    engine_->Cancel();
    ShowStatus(Text(EText::Stopped));
}

void CDialogWindow::accept() {
    if (busy_->IsRunning()) return busy_->Stop();
    if (controls_->GoToWrongField()) return;
    if (!options_.results || WriteResult(false)) model_.Ok();
}

QString CDialogWindow::AskOutputFile() {
    const QString known =
        output_.isEmpty() ? QString::fromStdString(options_.results->Suggestion()) : output_;
    return QFileDialog::getSaveFileName(
        this, Text(EText::SaveResult), known,
        Text(EText::Pictures) + " (*.png *.jpg *.jpeg *.tif *.tiff *.webp)");
}

// An OK that was pressed while the picture is still read waits for it.
bool CDialogWindow::WaitForPicture() {
    return busy_->Wait(Text(EText::Loading), [this] {
        CheckLoading();
        return !loading_ || ended_;
    }) && !ended_;
}

void CDialogWindow::SetBusy(bool busy) {
    for (QWidget* part : acting_) part->setEnabled(!busy);
    if (busy) return engine_->Cancel();
    if (!loading_ && !ended_) PreviewChanged();  // one may have been stopped
}

bool CDialogWindow::WriteResult(bool ask) {
    QWidget* focus = focusWidget();
    SetBusy(true);
    model_.Store();
    bool written = false;
    for (bool goes_on = WaitForPicture(); goes_on && !written && !ended_;) {
        if (ask || output_.isEmpty()) {
            const QString file = AskOutputFile();
            if (file.isEmpty()) break;
            output_ = file;
            replaces_ = true;  // the question covered a file that exists
        }
        const std::string file = output_.toStdString();
        std::string error = options_.results->Check(file, replaces_);
        if (error.empty()) {
            const SOutcome outcome =
                busy_->Run(Text(EText::Making) + " " + output_, [&](IProgressSink& progress) {
                    return options_.results->Make(file, replaces_, progress);
                });
            written = outcome.written;
            error = outcome.error;
            if (!written && error.empty()) {
                ShowStatus(Text(EText::NotMade));
                break;
            }
        }
        if (!written) goes_on = AskHowToGoOn(QString::fromStdString(error), ask);
    }
    if (written) busy_->Say(Text(EText::Written).arg(output_));
    SetBusy(false);
    if (written) ShowStatus(Text(EText::Written).arg(output_));
    if (focus) focus->setFocus();
    return written;
}

// Whether to try once more, `ask` being for another file.
bool CDialogWindow::AskHowToGoOn(const QString& error, bool& ask) {
    QMessageBox box(QMessageBox::Warning, windowTitle(), error, QMessageBox::NoButton, this);
    box.setInformativeText(Text(EText::NotWritten));
    const auto* other = box.addButton(Text(EText::OtherName), QMessageBox::AcceptRole);
    const auto* again = box.addButton(Text(EText::TryAgain), QMessageBox::AcceptRole);
    box.setEscapeButton(box.addButton(Text(EText::BackToWindow), QMessageBox::RejectRole));
    box.exec();
    ask = box.clickedButton() == other;
    return ask || box.clickedButton() == again;
}

void CDialogWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (busy_->IsRunning()) return busy_->Stop();
    if (event->spontaneous() && !MayDiscard()) return;
    engine_->Cancel();
    model_.Cancel();
}

void CDialogWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || ended_) return;
    const QWidget* other = QApplication::activeWindow();
    model_.Activate(isActiveWindow(), other && other != this && other->parentWidget() == this);
}

// The key O shows the original wherever the focus is in this window; undo and redo are the
// dialog's, not those of the text in a field.
bool CDialogWindow::eventFilter(QObject* watched, QEvent* event) {
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    const bool shortcut = event->type() == QEvent::ShortcutOverride;
    if ((!key && !shortcut) || !isActiveWindow()) return QDialog::eventFilter(watched, event);
    const auto* pressed = static_cast<QKeyEvent*>(event);
    if (shortcut) {
        const auto combined = pressed->keyCombination();
        const bool redo = combined == (Qt::ControlModifier | Qt::ShiftModifier | Qt::Key_Z) ||
                          combined == (Qt::ControlModifier | Qt::Key_Y);
        if (!redo && !pressed->matches(QKeySequence::Undo)) {
            return QDialog::eventFilter(watched, event);
        }
        event->ignore();
        return true;
    }
    if (pressed->key() == Qt::Key_Return || pressed->key() == Qt::Key_Enter) {
        ReturnKey(*pressed);
        return true;
    }
    if (pressed->key() != Qt::Key_O || pressed->modifiers() != Qt::NoModifier) {
        return QDialog::eventFilter(watched, event);
    }
    if (!pressed->isAutoRepeat()) HoldOriginal(event->type() == QEvent::KeyPress);
    return true;
}

// OK comes with the key's release: one that is held, perhaps since the program was started with it,
// repeats before that and presses nothing. A repeat may look like a release and a press of their
// own, but at one time.
void CDialogWindow::ReturnKey(const QKeyEvent& event) {
    const bool press = event.type() == QEvent::KeyPress;
    const bool taken_back = return_released_ != 0 && event.timestamp() == return_released_;
    const bool tapped = return_pressed_ && !press && !event.isAutoRepeat();
    return_pressed_ = press && !event.isAutoRepeat() && !taken_back;
    return_released_ = press ? 0 : event.timestamp();
    if (tapped) accept();
}

void CDialogWindow::HoldOriginal(bool hold) { pane_->ShowOriginal(hold); }

void CDialogWindow::ShowScale() {
    const double percent = pane_->Scale() * 100;
    scale_->setText(QString("%1 %").arg(percent, 0, 'f', percent < 10 ? 1 : 0));
}

void CDialogWindow::ShowStatus(const QString& text) {
    said_ = text;
    status_->setText(pick_hint_.isEmpty() ? text : pick_hint_);
}

void CDialogWindow::ShowProgress() {
    const bool busy = engine_->IsBusy();
    progress_->setValue(busy ? static_cast<int>(engine_->Progress() * kProgressSteps) : 0);
}

void CDialogWindow::FetchPreview() {
    pane_->SetOriginal(engine_->Original());
    const CPreviewEngine::SShown shown = engine_->Shown();
    pane_->SetResult(shown.picture);
    ShowProgress();
    if (!shown.error.empty()) {
        ShowStatus(Text(EText::PreviewFailed).arg(QString::fromStdString(shown.error)));
    } else if (shown.picture) {
        ShowStatus(Text(shown.exact ? EText::Exact : EText::Draft));
    }
}

// The colour of the original, whatever is shown.
void CDialogWindow::PickAt(QPoint pixel) {
    const auto original = engine_->Original();
    if (!original) return;
    const QRgb picked = original->Image(0, QRect(pixel, QSize(1, 1))).pixel(0, 0);
    controls_->EndPicking();
    model_.PickFromPicture(CColorRef::FromRgb(qRed(picked), qGreen(picked), qBlue(picked)).value);
}

void CDialogWindow::FillPresetMenu() {
    QMenu& menu = *presets_->menu();
    menu.clear();
    auto* list = new CPresetList(model_, engine_->Original(), &menu);
    auto* shown = new QWidgetAction(&menu);
    shown->setDefaultWidget(list);
    menu.addAction(shown);
    const auto load = [this, &menu](const QListWidgetItem* item) {
        const std::string id = CPresetList::IdOf(*item);
        menu.close();
        LoadPreset(id);
    };
    connect(list, &QListWidget::itemClicked, this, load);
    connect(list, &QListWidget::itemActivated, this, load);
    list->setFocus();
    menu.addSeparator();
    menu.addAction(Text(EText::SaveAs), this, [this] { SavePreset(); });
    QMenu* remove = menu.addMenu(Text(EText::Delete));
    for (const SPresetEntry& preset : model_.Presets()) {
        if (preset.ships) continue;
        const QString name = ToQt(preset.name);
        QString escaped = name;
        remove->addAction(escaped.replace("&", "&&"), this, [this, name] { DeletePreset(name); });
    }
    remove->setEnabled(!remove->isEmpty());
}

void CDialogWindow::Report(const CErrorAutoThrow& error) {
    if (error.Failed()) ShowMessage(FromUtf8(error.Text()));
}

bool CDialogWindow::Ask(const QString& question) {
    return QMessageBox::question(this, windowTitle(), question, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void CDialogWindow::LoadPreset(const std::string& id) { Report(model_.LoadPreset(id)); }

void CDialogWindow::SavePreset() {
    bool entered = false;
    const QString name = QInputDialog::getText(
        this, Text(EText::SavePreset), Text(EText::PresetName), QLineEdit::Normal, {}, &entered);
    if (!entered || name.isEmpty()) return;
    const auto presets = model_.Presets();
    const bool exists =
        std::any_of(presets.begin(), presets.end(), [&](const SPresetEntry& preset) {
            return !preset.ships && preset.id == name.toStdString();
        });
    if (exists && !Ask(Text(EText::ReplacePreset).arg(name))) return;
    Report(model_.SavePreset(name.toStdString(), exists));
}

void CDialogWindow::DeletePreset(const QString& name) {
    if (Ask(Text(EText::DeletePreset).arg(name))) Report(model_.DeletePreset(name.toStdString()));
}

void CDialogWindow::CopyCommandLine() {
    const std::string output = options_.output.empty() ? "result.png" : options_.output;
    QApplication::clipboard()->setText(
        QString::fromStdString(model_.CommandLine(options_.input, output)));
    ShowStatus(Text(EText::CommandLineCopied));
}
