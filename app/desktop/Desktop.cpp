#include <unistd.h>

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QTimer>
#include <QTranslator>
#include <cstdio>

#include "app/desktop/CDialogWindow.h"
#include "app/desktop/CModifierWatch.h"
#include "app/desktop/CStartWindow.h"
#include "app/desktop/IDesktop.h"
#include "app/desktop/Texts.h"

namespace {

constexpr int kNoScreen = 7;
constexpr char kApplicationId[] = "org.cmdtexture.CmdTexture";
constexpr int kInterruptionMilliseconds = 50;

// Qt would abort, and dump core, when it finds no screen. What is wrong it says in a warning
// before.
void OnMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    static QString reason;
    if (text.contains("could not connect")) reason = text;
    if (type == QtFatalMsg) {
        const QString what = reason.isEmpty() ? text.section('\n', 0, 0) : reason;
        std::fprintf(stderr, "cmdtexture: error: no window can be shown: %s\n",
                     what.toUtf8().constData());
        _exit(kNoScreen);
    }
    if (type == QtCriticalMsg) std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

class CToolkit final : public IToolkit {
  public:
    explicit CToolkit(const SDesktopOptions& options) : options_(options) {}
    std::unique_ptr<IDialogView> Open(IDialogModel& model) override {
        return std::make_unique<CDialogWindow>(model, options_);
    }

  private:
    const SDesktopOptions& options_;
};

class CDesktop final : public IDesktop {
  public:
    explicit CDesktop(const SDesktopOptions& options) : options_(options), toolkit_(options_) {
        qInstallMessageHandler(&OnMessage);
        if (!qApp) {
            application_ = std::make_unique<QApplication>(argument_count_, arguments_);
        }
        QGuiApplication::setDesktopFileName(kApplicationId);
        QGuiApplication::setWindowIcon(QIcon(QString(":/%1.png").arg(kApplicationId)));
        modifiers_ = std::make_unique<CModifierWatch>(*qApp);
        QApplication::setApplicationDisplayName(Text(EText::Application));
        const QString code = QString::fromStdString(options.language).toLower();
        QLocale::setDefault(QLocale(code));
        if (qt_texts_.load("qtbase_" + code, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(&qt_texts_);
        }
        if (!options.interrupted) return;
        QObject::connect(&interruption_, &QTimer::timeout, [this] { CheckInterruption(); });
        interruption_.start(kInterruptionMilliseconds);
    }

    IToolkit& Toolkit() override { return toolkit_; }
    SDesktopOptions& Options() override { return options_; }
    std::string ChooseEffect() override { return CStartWindow(*options_.host, options_).Choose(); }

    void ShowError(const std::string& text) override {
        QMessageBox::warning(nullptr, {}, QString::fromStdString(text));
    }

  private:
    // Cancels what waits for the user, the innermost menu or dialog first.
    void CheckInterruption() {
        QWidget* waiting = QApplication::activePopupWidget();
        if (!waiting) waiting = QApplication::activeModalWidget();
        if (waiting && options_.interrupted()) waiting->close();
    }

    SDesktopOptions options_;
    int argument_count_ = 1;
    char name_[11] = "cmdtexture";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
    std::unique_ptr<CModifierWatch> modifiers_;
    QTranslator qt_texts_;
    QTimer interruption_;
    CToolkit toolkit_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) IDesktop* MakeDesktop(
    const SDesktopOptions& options) {
    return new CDesktop(options);
}
