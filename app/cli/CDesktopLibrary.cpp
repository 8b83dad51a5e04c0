#include "app/cli/CDesktopLibrary.h"

#include <dlfcn.h>

#include <cstdlib>

#include "app/cli/CliError.h"
#include "hostlib/language/Texts.h"
#include "hostlib/windowing/IToolkit.h"

namespace {

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

// Asked before the toolkit is loaded, which takes longer and says less.
void RequireScreen() {
    if (IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY") || IsSet("QT_QPA_PLATFORM")) return;
    throw CCliError(EExit::Effect,
                    Tr("no window can be shown: neither DISPLAY nor WAYLAND_DISPLAY is set"),
                    Tr("\"cmdtexture apply\" does the same without a window"));
}

}  // namespace

CDesktopLibrary::CDesktopLibrary(const SInstallation& installation,
                                 const SDesktopOptions& options) {
    RequireScreen();
    const auto file = installation.plugins / kDesktopLibrary;
    // The library stays: the toolkit does not survive being unloaded and loaded again.
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!library) {
        throw CCliError(EExit::Effect, Tr("no window can be shown: {}", dlerror()),
                        Tr("the windows and the Qt 6 Widgets libraries must be installed (Debian: "
                           "cmdtexture-desktop)"));
    }
    const auto make = reinterpret_cast<MakeDesktopFunction>(dlsym(library, kMakeDesktop));
    if (!make) {
        throw CCliError(EExit::Effect, Tr("{}: not a library of this program", file.string()));
    }
    desktop_.reset(make(options));
    InstallToolkit(&desktop_->Toolkit());
}

CDesktopLibrary::~CDesktopLibrary() { InstallToolkit(nullptr); }
