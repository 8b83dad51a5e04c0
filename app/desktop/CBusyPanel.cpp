#include "app/desktop/CBusyPanel.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <future>

#include "app/desktop/Texts.h"

namespace {
constexpr int kLookMilliseconds = 20;
constexpr int kSayMilliseconds = 1500;
constexpr int kSteps = 1000;
constexpr double kWidthShare = 0.6;  // of the window
}  // namespace

class CBusyPanel::CSink final : public IProgressSink {
  public:
    explicit CSink(CBusyPanel& panel) : panel_(panel) {}
    bool OnProgress(double fraction) override {
        panel_.progress_ = fraction;
        return panel_.stops_;
    }

  private:
    CBusyPanel& panel_;
};

CBusyPanel::CBusyPanel(QWidget* window)
    : QFrame(window),
      text_(new QLabel),
      bar_(new QProgressBar),
      stop_(new QPushButton(Text(EText::Cancel))) {
    setObjectName("busy");
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    text_->setObjectName("busy-text");
    text_->setWordWrap(true);
    bar_->setRange(0, kSteps);
    bar_->setAccessibleName(Text(EText::Progress));
    stop_->setObjectName("busy-stop");
    stop_->setAutoDefault(false);
    connect(stop_, &QPushButton::clicked, this, [this] { Stop(); });
    auto* line = new QHBoxLayout;
    line->addWidget(bar_, 1);
    line->addWidget(stop_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addLayout(line);
    hide();
}

void CBusyPanel::Appear(const QString& text) {
    text_->setText(text);
    progress_ = 0;
    bar_->setValue(0);
    stops_ = false;
    setFixedWidth(static_cast<int>(parentWidget()->width() * kWidthShare));
    adjustSize();
    move((parentWidget()->width() - width()) / 2, (parentWidget()->height() - height()) / 2);
    show();
    raise();
    stop_->setFocus();
}

void CBusyPanel::Loop(const std::function<bool()>& done) {
    QEventLoop loop;
    QTimer look;
    connect(&look, &QTimer::timeout, &loop, [&] {
        bar_->setValue(static_cast<int>(progress_ * kSteps));
        if (done()) loop.quit();
    });
    look.start(kLookMilliseconds);
    running_ = true;
    loop.exec();
    running_ = false;
}

SOutcome CBusyPanel::Run(const QString& text, const Work& work) {
    Appear(text);
    bar_->show();
    stop_->show();
    CSink sink(*this);
    std::future<SOutcome> outcome = std::async(std::launch::async, [&] { return work(sink); });
    Loop([&] { return outcome.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    hide();
    return outcome.get();
}

bool CBusyPanel::Wait(const QString& text, const std::function<bool()>& ready) {
    if (ready()) return true;
    Appear(text);
    bool came = false;
    Loop([&] { return (came = ready()) || stops_; });
    hide();
    return came;
}

void CBusyPanel::Say(const QString& text) {
    bar_->hide();
    stop_->hide();
    Appear(text);
    QElapsedTimer shown;
    shown.start();
    Loop([&] { return stops_ || shown.hasExpired(kSayMilliseconds); });
    hide();
}
