#include "app/desktop/WindowSettings.h"

#include <QStandardPaths>
#include <QWidget>

std::unique_ptr<QSettings> WindowSettings() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::make_unique<QSettings>(folder + "/cmdtexture/windows.ini", QSettings::IniFormat);
}

void KeepPlace(const QWidget& window, const QString& name) {
    WindowSettings()->setValue(name + "/place", window.saveGeometry());
}

bool RestorePlace(QWidget& window, const QString& name) {
    return window.restoreGeometry(WindowSettings()->value(name + "/place").toByteArray());
}
