#pragma once

#include <string>

#include "host/core/Geometry.h"
#include "hostlib/commands/CDocument.h"
#include "hostlib/job/CEffectModule.h"
#include "hostlib/job/Installation.h"

// Options that every subcommand which talks about effects takes.
struct SSessionOptions {
    std::string language;  // a code; empty: the environment's
    int range_scale = 0;   // per cent that the scaled maxima grow
};

// The installation and its module, loaded for the run of one subcommand. Failures are thrown as
// CCliError.
class CSession {
  public:
    explicit CSession(const SSessionOptions& options);

    const CEffectModule& Module() const { return *module_; }
    const SInstallation& Installation() const { return installation_; }
    // The code of the language that the texts are in.
    const std::string& Language() const { return language_; }
    // A command by the name that the user gave, in any letter case.
    TRef<CCmdEffect> Effect(const std::string& name) const;

  private:
    SInstallation installation_;
    std::string language_;
    std::unique_ptr<CEffectModule> module_;
};

// "300x200" as a size of 1 to 65535 a side; "X,Y" as a place within a million pixels of the origin.
CSize ParseSize(const std::string& text, const std::string& option);
CPoint ParsePlace(const std::string& text, const std::string& option);
