#include "app/desktop/CModifierWatch.h"

#include <QEvent>

#include "hostlib/system/ModifierKeys.h"

namespace {

void Tell() {
    const Qt::KeyboardModifiers held = QGuiApplication::queryKeyboardModifiers();
    SetModifierKeys({.shift = held.testFlag(Qt::ShiftModifier),
                     .control = held.testFlag(Qt::ControlModifier),
                     .alt = held.testFlag(Qt::AltModifier)});
}

}  // namespace

CModifierWatch::CModifierWatch(QApplication& application) {
    application.installEventFilter(this);
    Tell();
}

bool CModifierWatch::eventFilter(QObject* /*receiver*/, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress || type == QEvent::KeyRelease || type == QEvent::WindowActivate ||
        type == QEvent::WindowDeactivate) {
        Tell();
    }
    return false;
}
