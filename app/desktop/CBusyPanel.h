#pragma once

#include <QFrame>
#include <atomic>

#include "app/desktop/IDesktop.h"

class QLabel;
class QProgressBar;
class QPushButton;

// A panel over its window while work is done that takes a while: what is done, how far it is, and a
// button that stops it. The window goes on being drawn.
class CBusyPanel final : public QFrame {
  public:
    using Work = std::function<SOutcome(IProgressSink&)>;
    explicit CBusyPanel(QWidget* window);

    // Runs the work on a thread of its own, and answers when that has ended.
    SOutcome Run(const QString& text, const Work& work);
    // Shows the text until `ready` answers true; false when the user stopped it.
    bool Wait(const QString& text, const std::function<bool()>& ready);
    bool IsRunning() const { return running_; }
    void Stop() { stops_ = true; }
    // Says how it ended, for a moment or until a key or click.
    void Say(const QString& text);

  private:
    class CSink;
    void Appear(const QString& text);
    // Draws the window until `done`.
    void Loop(const std::function<bool()>& done);

    QLabel* text_;
    QProgressBar* bar_;
    QPushButton* stop_;
    std::atomic<double> progress_ = 0;
    std::atomic<bool> stops_ = false;
    bool running_ = false;
};
