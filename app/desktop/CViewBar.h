#pragma once

#include <QKeySequence>
#include <QWidget>
#include <functional>
#include <vector>

class CPreviewPane;
class QLineEdit;
class QPushButton;

// Makes a button in a bar: its name for tests and scripts, its text, tip and key. A picture takes
// the text's place, which is then the button's accessible name and the beginning of its tip.
struct SButton {
    const char* name;
    QString text, tip;
    QKeySequence key = {};
    std::function<void()> action = {};
};
QPushButton* AddButton(QWidget& bar, const SButton& button);
QPushButton* AddButton(QWidget& bar, const SButton& button, const QIcon& picture);

// The buttons above a preview: its scale, which can be typed, the split view, and the original for
// as long as a button is held.
class CViewBar final : public QWidget {
  public:
    CViewBar(CPreviewPane& pane, QWidget* parent);
    // What the bar of a larger window has besides, at its right.
    QPushButton* Add(const SButton& button, const QIcon& picture);

  protected:
    // Where there is too little room, what keys and the wheel do as well is left out.
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ShowScale();
    void TakeScale();

    CPreviewPane& pane_;
    QLineEdit* scale_;
    std::vector<QPushButton*> optional_;  // the first to go first
};
