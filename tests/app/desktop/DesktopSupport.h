#pragma once

#include <QtTest/qtestspontaneevent.h>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <fstream>
#include <functional>

#include "app/desktop/CDialogWindow.h"
#include "app/desktop/CPreviewPane.h"
#include "hostlib/commands/CDocument.h"
#include "job/CEffectModule.h"
#include "support/Pictures.h"

// The threads of this process that compute previews, and those that they started.
inline int PreviewThreads() {
    int found = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(thread.path() / "comm"), name);
        if (name == "preview") ++found;
    }
    return found;
}

// Three pictures of every kind, in two categories.
class SmallLibrary final : public TUnknownImpl<SmallLibrary, IResourceLibrary> {
  public:
    CErrorAutoThrow LoadImage(int type, const CString& name, CRowIteratorBands& image) override {
        const std::vector<SResourceEntry> entries = Entries(type);
        for (int i = 0; i < 3; ++i) {
            if (!name.IsEmpty() && entries[static_cast<std::size_t>(i)].name != name) continue;
            image = pictures::Make(ENPixelFormat::Grey8, 32, 32, [i](int x, int y, int) {
                return (x * (7 + i) + y * (3 + 5 * i)) % 256;
            });
            return {};
        }
        return TolmErrorCode::NotFound;
    }
    std::vector<SResourceEntry> Entries(int /*type*/) override {
        return {{L"Dunes", L"a"}, {L"Reed", L"a"}, {L"Slate", L"b"}};
    }
};

// A picture on which every effect shows.
inline CRowIteratorBands Photo(CNPixelFormat format, int width, int height) {
    const int top = format.Is16bit() ? 65535 : 255;
    return pictures::Make(format, width, height, [&](int x, int y, int c) {
        const bool alpha = format.IsAlphaChannelPresent() && c == format.ColourChannels();
        const int wave = (x * (c + 2) + y * y / (c + 9)) % 512;
        return (alpha ? 128 + (x + y) % 128 : wave < 256 ? wave : 511 - wave) * top / 255;
    });
}

inline const SDesktopOptions kOptions = {.input = "in put.png", .output = "", .language = "EN"};

// Opens the dialogs of commands as windows, with a script in the place of the user. A script that
// does not end the dialog cancels it.
class WindowToolkit final : public IToolkit {
  public:
    using Script = std::function<void(CDialogWindow& window, IDialogModel& model)>;
    WindowToolkit(Script script, SDesktopOptions options)
        : script_(std::move(script)), options_(std::move(options)) {
        InstallToolkit(this);
    }
    ~WindowToolkit() override { InstallToolkit(nullptr); }
    WindowToolkit(const WindowToolkit&) = delete;
    WindowToolkit& operator=(const WindowToolkit&) = delete;

    std::unique_ptr<IDialogView> Open(IDialogModel& model) override {
        auto window = std::make_unique<CDialogWindow>(model, options_);
        QTimer::singleShot(0, window.get(), [this, &model, shown = window.get()] {
            script_(*shown, model);
            model.Cancel();
        });
        return window;
    }

  private:
    Script script_;
    SDesktopOptions options_;
};

inline bool WaitUntilDone(const CDialogWindow& window) {
    return QTest::qWaitFor([&] { return !window.Engine().IsBusy(); }, 60000);
}
