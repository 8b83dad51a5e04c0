#pragma once

#include <QApplication>

// Tells the host's key-state service which modifier keys are held: at once, from the screen, and
// with every event that may change it, wherever in the program the focus is.
class CModifierWatch final : public QObject {
  public:
    explicit CModifierWatch(QApplication& application);

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
};
