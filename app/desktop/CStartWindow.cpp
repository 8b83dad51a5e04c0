#include "app/desktop/CStartWindow.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "app/desktop/CEffectList.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Thumbnails.h"
#include "app/desktop/WindowSettings.h"

namespace {
constexpr int kTickMilliseconds = 50;
constexpr QSize kPicture{240, 180};
constexpr QSize kWindow{900, 620};
constexpr double kScreenShare = 0.92;
}  // namespace

QString PictureFilter() {
    return Text(EText::Pictures) + " (*.png *.jpg *.jpeg *.tif *.tiff *.webp)";
}

QString DraggedFile(const QMimeData* data) {
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 ? urls.front().toLocalFile() : QString();
}

CStartWindow::CStartWindow(IEditHost& host, const SDesktopOptions& options)
    : host_(host),
      options_(options),
      picture_(new QLabel),
      go_(new QPushButton(Text(EText::Continue))),
      effects_(new CEffectList(host, this)) {
    setWindowTitle(Text(EText::StartTitle));
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    setAcceptDrops(true);
    picture_->setObjectName("picture");
    picture_->setAlignment(Qt::AlignCenter);
    picture_->setMinimumSize(kPicture);
    picture_->setFrameShape(QFrame::StyledPanel);
    picture_->setWordWrap(true);
    auto* open = new QPushButton(Text(EText::OpenPicture));
    open->setObjectName("open");
    open->setAutoDefault(false);
    connect(open, &QPushButton::clicked, this, [this] { AskPicture(); });
    go_->setObjectName("continue");
    go_->setDefault(true);
    connect(go_, &QPushButton::clicked, this, [this] { Take(effects_->Current()); });
    effects_->on_clicked = [this](const std::string&) { ShowState(); };
    effects_->on_activated = [this](const std::string& effect) { Take(effect); };
    auto* cancel = new QPushButton(Text(EText::Cancel));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* side = new QVBoxLayout;
    side->addWidget(picture_);
    side->addWidget(open);
    side->addStretch(1);
    auto* upper = new QHBoxLayout;
    upper->addLayout(side);
    upper->addWidget(effects_, 1);
    auto* lower = new QHBoxLayout;
    lower->addStretch(1);
    lower->addWidget(go_);
    lower->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(upper, 1);
    layout->addLayout(lower);
    if (!RestorePlace(*this, "start") && screen()) {
        resize(kWindow.boundedTo(screen()->availableSize() * kScreenShare));
    }
    connect(&tick_, &QTimer::timeout, this, [this] { CheckPicture(); });
    tick_.start(kTickMilliseconds);
    ShowState();
}

std::string CStartWindow::Choose() {
    exec();
    effects_->ShowPicture({});
    KeepPlace(*this, "start");
    return chosen_;
}

void CStartWindow::ShowState() {
    const QString file = QString::fromStdString(options_.input);
    if (file.isEmpty()) {
        picture_->setText(Text(EText::DropPicture));
    } else if (!shown_) {
        picture_->setText(QFileInfo(file).fileName() + "\n" + Text(EText::Loading));
    }
    go_->setEnabled(!file.isEmpty() && !effects_->Current().empty());
}

// A picture that cannot be read is said where its error is known: when the windows have closed.
void CStartWindow::CheckPicture() {
    if (shown_ || options_.input.empty() || !host_.PictureCame()) return;
    const CRowIteratorBands picture = host_.Picture();
    if (!picture.IsAttached()) return reject();
    shown_ = true;
    picture_->setPixmap(PictureOf(picture, kPicture));
    picture_->setToolTip(QString::fromStdString(options_.input));
    effects_->ShowPicture(picture);
}

void CStartWindow::AskPicture() {
    const QString file =
        QFileDialog::getOpenFileName(this, Text(EText::OpenPicture), {}, PictureFilter());
    if (!file.isEmpty()) Open(file);
}

void CStartWindow::Open(const QString& file) {
    effects_->ShowPicture({});
    const std::string error = host_.Open(file.toStdString());
    if (!error.empty()) {
        QMessageBox::warning(this, windowTitle(), QString::fromStdString(error));
        return;
    }
    shown_ = false;
    picture_->setPixmap({});
    ShowState();
}

void CStartWindow::Take(const std::string& effect) {
    if (effect.empty()) return;
    if (options_.input.empty()) AskPicture();
    if (options_.input.empty()) return;
    chosen_ = effect;
    accept();
}

void CStartWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!DraggedFile(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void CStartWindow::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    Open(DraggedFile(event->mimeData()));
}
