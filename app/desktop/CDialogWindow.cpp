#include "app/desktop/CDialogWindow.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSpinBox>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidgetAction>

#include "app/desktop/CBusyPanel.h"
#include "app/desktop/CControlPanel.h"
#include "app/desktop/CEffectList.h"
#include "app/desktop/CPresetList.h"
#include "app/desktop/CPreviewPane.h"
#include "app/desktop/CStartWindow.h"
#include "app/desktop/CViewBar.h"
#include "app/desktop/FileOptions.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Widgets.h"
#include "app/desktop/WindowSettings.h"
#include "host/windowing/CDialog.h"

namespace {

constexpr int kTickMilliseconds = 50;
constexpr int kBurstMilliseconds = 800;  // a pause in typing that ends a step of the history
constexpr int kFrameMilliseconds = 100;
constexpr int kProgressSteps = 1000;
constexpr int kProgressHeight = 3;
constexpr int kDescriptionLines = 3;
constexpr const char* kEffectsShown = "dialog/effects-shown";
constexpr const char* kParts = "dialog/parts";
constexpr double kScreenShare = 0.92;  // of the screen that a window may take

// Rounded to nearest, halves up.
COLORREF MeanOf(const QImage& pixels) {
    int red = 0, green = 0, blue = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            const QRgb one = pixels.pixel(x, y);
            red += qRed(one);
            green += qGreen(one);
            blue += qBlue(one);
        }
    }
    const int count = pixels.width() * pixels.height();
    const auto mean = [&](int sum) { return (2 * sum + count) / (2 * count); };
    return CColorRef::FromRgb(mean(red), mean(green), mean(blue)).value;
}

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

    setAcceptDrops(options.host != nullptr);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(MakeParts(), 1);
    layout->addWidget(MakeButtons());
    busy_ = new CBusyPanel(this);
    const QScreen* on = screen();
    if (!RestorePlace(*this, "dialog") && on) {
        resize(sizeHint().boundedTo(on->availableSize() * kScreenShare));
    }
    if (effects_button_)
        effects_button_->setChecked(WindowSettings()->value(kEffectsShown).toBool());
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
    return preview;
}

QWidget* CDialogWindow::MakeViewBar() {
    auto* bar = new CViewBar(*pane_, this);
    acting_.push_back(bar);
    if (options_.host) {
        effects_button_ = bar->Add(
            {"show-effects", Text(EText::Effects), Text(EText::EffectsTip), QKeySequence("F9")},
            EffectsIcon(palette()));
        effects_button_->setCheckable(true);
        connect(effects_button_, &QPushButton::toggled, this, [this](bool on) {
            effects_->setVisible(on);
            if (on) effects_->ShowPicture(options_.host->Picture());
        });
    }
    bar->Add({"full-screen",
              Text(EText::FullScreen),
              {},
              QKeySequence("F11"),
              [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); }},
             FullScreenIcon(palette()));
    bar->Add({"help",
              Text(EText::Help),
              {},
              QKeySequence::HelpContents,
              [this] { QMessageBox::information(this, Text(EText::Help), Text(EText::HelpText)); }},
             HelpIcon(palette()));
    return bar;
}

// The effects at the left, if wanted, then the preview, then the controls.
QWidget* CDialogWindow::MakeParts() {
    parts_ = new QSplitter(Qt::Horizontal);
    parts_->setChildrenCollapsible(false);
    QWidget* preview = MakePreview();
    if (options_.host) {
        effects_ = new CEffectList(*options_.host, parts_);
        effects_->SetCurrent(model_.EffectName());
        effects_->on_clicked = effects_->on_activated = [this](const std::string& effect) {
            if (effect != model_.EffectName()) GoOnWith(effect);
        };
        effects_->hide();
        acting_.push_back(effects_);
        parts_->addWidget(effects_);
    }
    parts_->addWidget(preview);
    parts_->addWidget(MakeControls());
    parts_->setStretchFactor(parts_->indexOf(preview), 1);
    return parts_;
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
    QSplitter* halves = halves_ = new QSplitter(Qt::Vertical);
    halves->addWidget(controls_);
    preset_list_ = new CPresetList(model_, CPresetList::EPlace::Panel, halves);
    preset_list_->on_chosen = [this](const std::string& id) { LoadPreset(id); };

    halves->addWidget(preset_list_);
    halves->setStretchFactor(0, 1);
    halves->setCollapsible(0, false);
    acting_.push_back(halves);
    layout->addWidget(halves, 1);
    if (options_.host) layout->addWidget(MakeMix());
    layout->addWidget(description_);
    return side;
}

// The values that all effects share: how the result is laid over the picture.
QWidget* CDialogWindow::MakeMix() {
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(8, 0, 8, 0);
    auto* opacity = opacity_ = new QSpinBox;
    opacity->setObjectName("opacity");
    opacity->setRange(0, 100);
    opacity->setValue(100);
    opacity->setSuffix(" %");
    opacity->setFocusPolicy(Qt::StrongFocus);
    opacity->setToolTip(Text(EText::Opacity));
    opacity->setAccessibleName(Text(EText::Opacity));
    opacity->installEventFilter(this);
    auto* blend = blend_ = new QComboBox;
    blend->setObjectName("blend");
    blend->setFocusPolicy(Qt::StrongFocus);
    blend->setToolTip(Text(EText::Blending));
    blend->setAccessibleName(Text(EText::Blending));
    blend->setMinimumContentsLength(8);
    blend->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    blend->installEventFilter(this);
    for (int i = 0; i <= static_cast<int>(ENBlendMode::Luminosity); ++i) {
        blend->addItem(Text(static_cast<EText>(static_cast<int>(EText::FirstBlendMode) + i)));
    }
    connect(opacity, &QSpinBox::valueChanged, this, [this](int value) {
        model_.SetMix({value, model_.Mix().blend});
    });
    connect(blend, &QComboBox::currentIndexChanged, this, [this](int chosen) {
        model_.SetMix({model_.Mix().opacity, static_cast<ENBlendMode>(chosen)});
    });
    auto* label = new QLabel(Text(EText::OpacityLabel));
    label->setBuddy(opacity);
    layout->addWidget(label);
    layout->addWidget(opacity);
    layout->addWidget(blend, 1);
    return bar;
}

QWidget* CDialogWindow::MakeButtons() {
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 4, 0, 0);
    acting_.push_back(bar);
    const QPalette colours = palette();
    presets_ = AddButton(*bar, {"presets", Text(EText::Presets), {}});
    presets_->setMenu(new QMenu(this));
    connect(presets_->menu(), &QMenu::aboutToShow, this, [this] { FillPresetMenu(); });
    AddButton(*bar, {"reset-all", Text(EText::ResetAll), {}, {}, [this] { model_.ResetAll(); }},
              ResetIcon(colours));
    AddButton(*bar,
              {"randomise", Text(EText::Randomise), Text(EText::RandomiseTip),
               QKeySequence("Ctrl+R"), [this] { model_.Randomise(); }},
              DiceIcon(colours));
    undo_ = AddButton(*bar,
                      {"undo", Text(EText::Undo), Text(EText::UndoTip), QKeySequence::Undo,
                       [this] { model_.Undo(); }},
                      UndoIcon(colours));
    redo_ = AddButton(*bar,
                      {"redo", Text(EText::Redo), Text(EText::RedoTip),
                       QKeySequence("Ctrl+Shift+Z"), [this] { model_.Redo(); }},
                      RedoIcon(colours));
    connect(new QShortcut(QKeySequence("Ctrl+Y"), this), &QShortcut::activated, redo_,
            &QPushButton::click);
    history_ = AddButton(
        *bar, {"history", Text(EText::History), Text(EText::HistoryTip), QKeySequence("Ctrl+H")},
        HistoryIcon(colours));
    history_->setMenu(new QMenu(this));
    connect(history_->menu(), &QMenu::aboutToShow, this, [this] { FillHistoryMenu(); });
    HistoryChanged();
    AddButton(*bar,
              {"copy", Text(EText::CopyCommandLine), Text(EText::CopyCommandLineTip),
               QKeySequence("Ctrl+Shift+C"), [this] { CopyCommandLine(); }},
              CommandLineIcon(colours));
    layout->addStretch(1);
    if (options_.host) AddResultButtons(*bar);
    QPushButton* ok = AddButton(*bar, {"ok", Text(EText::Ok), {}, {}, [this] { accept(); }});
    ok->setDefault(true);
    AddButton(*bar, {"cancel", Text(EText::Cancel), {}, {}, [this] {
                         engine_->Cancel();
                         model_.Cancel();
                     }});
    return bar;
}

void CDialogWindow::AddResultButtons(QWidget& bar) {
    const auto unless_wrong = [this](auto&& action) {
        return [this, action] {
            if (!controls_->GoToWrongField()) action();
        };
    };
    AddButton(bar,
              {"save-as", Text(EText::SaveResultAs), Text(EText::SaveResultAsTip),
               QKeySequence("Ctrl+Shift+S"), unless_wrong([this] { WriteResult(true); })},
              SaveIcon(palette()));
    AddButton(bar, {"apply", Text(EText::Apply), Text(EText::ApplyTip), QKeySequence("Ctrl+Return"),
                    unless_wrong([this] { Apply(); })});
}

int CDialogWindow::RunModal() {
    setWindowModality(Qt::ApplicationModal);
    show();
    ShareRoom();
    activateWindow();
    QTimer::singleShot(kFrameMilliseconds, this, [this] { BringFrameOnScreen(); });
    controls_->FocusFirst();
    if (!ended_) loop_.exec();
    engine_->Cancel();
    KeepPlace(*this, "dialog");
    WindowSettings()->setValue(kParts, parts_->saveState());
    if (effects_) {
        WindowSettings()->setValue(kEffectsShown, effects_->isVisible());
        effects_->ShowPicture({});
    }
    hide();
    return result_;
}

// Its title, too, which the window manager has put around it by now.
void CDialogWindow::BringFrameOnScreen() {
    const QRect frame = frameGeometry();
    const QRect room = screen()->availableGeometry();
    if (frame.top() < room.top()) move(frame.left(), room.top());
}

// The controls get the room that they need, the preview and the presets the rest; where that is too
// little for one row of presets they stay below the edge, from where they can be drawn.
void CDialogWindow::ShareRoom() {
    if (!parts_->restoreState(WindowSettings()->value(kParts).toByteArray())) {
        const QWidget* side = parts_->widget(parts_->count() - 1);
        const int width = std::min(side->sizeHint().width(),
                                   std::max(side->minimumSizeHint().width(), parts_->width() / 3));
        QList<int> widths(parts_->count(), 0);
        widths[widths.size() - 1] = width;
        widths[widths.size() - 2] = parts_->width() - width - parts_->handleWidth();
        parts_->setSizes(widths);
    }
    const int all = halves_->height() - halves_->handleWidth();
    const int rest = all - controls_->sizeHint().height();
    if (rest >= CPresetList::kThumbnail.height()) return halves_->setSizes({all - rest, rest});
    halves_->setSizes({all, 0});
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
    engine_->Request(model_.Snapshot(), model_.Mix(), pane_->ShownLevel());
    ShowProgress();
}

void CDialogWindow::HistoryChanged() {
    if (opacity_) {
        const QSignalBlocker quiet_opacity(opacity_), quiet_blend(blend_);
        opacity_->setValue(model_.Mix().opacity);
        blend_->setCurrentIndex(static_cast<int>(model_.Mix().blend));
    }
    undo_->setEnabled(model_.CanUndo());
    redo_->setEnabled(model_.CanRedo());
    history_->setEnabled(model_.CanUndo() || model_.CanRedo() ||
                         (options_.host && !options_.host->Applied().empty()));
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
        case SHistoryStep::EKind::Mix:
            return Text(EText::OpacityLabel) + ": " + ToQt(step.text);
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
    const auto applied = options_.host ? options_.host->Applied() : std::vector<std::string>();
    if (!applied.empty()) {
        menu.addAction(Text(EText::TakeBack).arg(QString::fromStdString(applied.back())), this,
                       [this] {
                           options_.host->TakeBack();
                           GoOnWith(model_.EffectName());
                       });
        menu.addSeparator();
    }
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

bool CDialogWindow::MayDiscard() {
    const bool applied = options_.host && !options_.host->Applied().empty();
    return (!model_.CanUndo() && !applied) || Ask(Text(EText::DiscardChanges));
}

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
    if (!options_.host || WriteResult(false)) model_.Ok();
}

QString CDialogWindow::AskOutputFile() {
    const QString known =
        output_.isEmpty() ? QString::fromStdString(options_.host->Suggestion()) : output_;
    return QFileDialog::getSaveFileName(this, Text(EText::SaveResult), known, PictureFilter());
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
            std::vector<SFileOption> options = options_.host->FileOptions(file.toStdString());
            if (!AskFileOptions(this, options)) break;
            options_.host->SetFileOptions(options);
            output_ = file;
            replaces_ = true;  // the question covered a file that exists
        }
        const std::string file = output_.toStdString();
        std::string error = options_.host->Check(file, replaces_);
        if (error.empty()) {
            const SOutcome outcome =
                busy_->Run(Text(EText::Making) + " " + output_, [&](IProgressSink& progress) {
                    return options_.host->Make(file, replaces_, model_.Mix(), progress);
                });
            written = outcome.done;
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

// The result becomes the picture, and the same dialog opens on it.
void CDialogWindow::Apply() {
    SetBusy(true);
    model_.Store();
    SOutcome outcome;
    if (WaitForPicture()) {
        const QString name = ToQt(model_.Template().title);
        outcome = busy_->Run(name, [this](IProgressSink& progress) {
            return options_.host->Apply(model_.Mix(), progress);
        });
        if (outcome.done) busy_->Say(Text(EText::WasApplied).arg(name));
    }
    SetBusy(false);
    if (outcome.done) return GoOnWith(model_.EffectName());
    if (!outcome.error.empty()) {
        QMessageBox::warning(this, windowTitle(), QString::fromStdString(outcome.error));
    }
}

void CDialogWindow::GoOnWith(const std::string& effect) {
    options_.host->GoOnWith(effect);
    model_.Cancel();
}

void CDialogWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!DraggedFile(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void CDialogWindow::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    const std::string error = options_.host->Open(DraggedFile(event->mimeData()).toStdString());
    if (error.empty()) return GoOnWith(model_.EffectName());
    QMessageBox::warning(this, windowTitle(), QString::fromStdString(error));
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
    if (event->type() == QEvent::Wheel && IsMixer(watched)) {
        if (static_cast<QWidget*>(watched)->hasFocus()) return QDialog::eventFilter(watched, event);
        event->ignore();
        return true;
    }
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    const bool shortcut = event->type() == QEvent::ShortcutOverride;
    const bool elsewhere = !isActiveWindow() || QApplication::activePopupWidget();  // a menu's
    if ((!key && !shortcut) || elsewhere) return QDialog::eventFilter(watched, event);
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
    const QWidget* focus = QApplication::focusWidget();
    const bool enter = pressed->key() == Qt::Key_Return || pressed->key() == Qt::Key_Enter;
    if (enter && watched == this) return true;  // a field has had it: it is not OK's
    // Other texts than numbers are typed into the bars; what is typed there is theirs.
    const auto* text = qobject_cast<const QLineEdit*>(focus);
    if (text && !qobject_cast<const QAbstractSpinBox*>(text->parentWidget())) {
        return QDialog::eventFilter(watched, event);
    }
    if (enter && !qobject_cast<const QAbstractItemView*>(focus) &&
        pressed->modifiers().testFlag(Qt::ControlModifier) == false) {
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

// The wheel turns nothing that was not clicked or tabbed to.
bool CDialogWindow::IsMixer(const QObject* watched) {
    return watched->objectName() == "opacity" || watched->objectName() == "blend";
}

void CDialogWindow::HoldOriginal(bool hold) { pane_->ShowOriginal(hold); }

void CDialogWindow::ShowStatus(const QString& text) {
    said_ = text;
    status_->setText(pick_hint_.isEmpty() ? text : pick_hint_);
}

void CDialogWindow::ShowProgress() {
    const bool busy = engine_->IsBusy();
    progress_->setValue(busy ? static_cast<int>(engine_->Progress() * kProgressSteps) : 0);
}

void CDialogWindow::FetchPreview() {
    const auto original = engine_->Original();
    if (original && !preset_list_->HasPicture()) preset_list_->Fill(original);
    pane_->SetOriginal(original);
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
    const int side = CControlPanel::PickedSide();
    const CSize size = original->FullSize();
    const QRect square = QRect(pixel - QPoint(side / 2, side / 2), QSize(side, side)) &
                         QRect(0, 0, size.cx, size.cy);
    controls_->EndPicking();
    model_.PickFromPicture(MeanOf(original->Image(0, square)));
}

void CDialogWindow::FillPresetMenu() {
    QMenu& menu = *presets_->menu();
    menu.clear();
    auto* list = new CPresetList(model_, CPresetList::EPlace::Menu, &menu);
    list->Fill(engine_->Original());
    auto* shown = new QWidgetAction(&menu);
    shown->setDefaultWidget(list);
    menu.addAction(shown);
    list->on_chosen = [this, &menu](const std::string& id) {
        menu.close();
        LoadPreset(id);
    };
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
    preset_list_->Fill(engine_->Original());
}

void CDialogWindow::DeletePreset(const QString& name) {
    if (Ask(Text(EText::DeletePreset).arg(name))) Report(model_.DeletePreset(name.toStdString()));
    preset_list_->Fill(engine_->Original());
}

void CDialogWindow::CopyCommandLine() {
    const std::string output = output_.isEmpty() ? "result.png" : output_.toStdString();
    model_.Store();
    std::string line = model_.CommandLine(options_.input, output);
    if (options_.host) line = options_.host->CommandLine(line, output, model_.Mix());
    QApplication::clipboard()->setText(QString::fromStdString(line));
    ShowStatus(Text(EText::CommandLineCopied));
}
