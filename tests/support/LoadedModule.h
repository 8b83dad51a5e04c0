#pragma once

#include "hostlib/commands/CDocument.h"
#include "job/CEffectModule.h"
#include "job/Installation.h"

// The plug-in that the build made, with its texts in a language.
class LoadedModule {
  public:
    explicit LoadedModule(const std::string& language = "EN")
        : module_(FindInstallation(), language) {}
    const CEffectModule* operator->() const { return &module_; }

  private:
    CEffectModule module_;
};
