#pragma once

#include <QSettings>
#include <memory>

class QWidget;

// What the windows keep from one run to the next, in the user's configuration folder: sizes and
// places, what is open, favourites. Settings that cannot be read or written are as if there were
// none.
std::unique_ptr<QSettings> WindowSettings();
// A window's size and place, by its name; back where it was, as far as the screen allows.
void KeepPlace(const QWidget& window, const QString& name);
bool RestorePlace(QWidget& window, const QString& name);
