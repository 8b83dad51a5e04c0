#pragma once

#include <memory>
#include <string>

#include "app/desktop/IDesktop.h"
#include "job/Installation.h"

// The windows, loaded now and let go with this object. Failures are thrown as CCliError: without a
// screen, or without the library, status 7.
class CDesktopLibrary {
  public:
    CDesktopLibrary(const SInstallation& installation, const SDesktopOptions& options);
    ~CDesktopLibrary();
    CDesktopLibrary(const CDesktopLibrary&) = delete;
    CDesktopLibrary& operator=(const CDesktopLibrary&) = delete;

    IDesktop* operator->() const { return desktop_.get(); }

  private:
    std::unique_ptr<IDesktop> desktop_;
};
