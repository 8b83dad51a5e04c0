#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/commands/CCmdEffect.h"

struct SInstallation;

// The plug-in, loaded, and the commands that it makes. Commands must be gone before it is.
class CEffectModule {
  public:
    // Loads the plug-in with its texts in `language` (a code such as "EN"), or in English when that
    // language's file cannot be used. Throws CNException with code 105 and the reason when the
    // plug-in or its texts cannot be loaded.
    CEffectModule(const SInstallation& installation, const std::string& language);
    ~CEffectModule();
    CEffectModule(const CEffectModule&) = delete;
    CEffectModule& operator=(const CEffectModule&) = delete;

    // Why the texts are in English although another language was wanted; else empty.
    const std::string& LanguageProblem() const { return language_problem_; }
    // The component names, in the order of the module's own table.
    const std::vector<std::string>& Names() const { return names_; }
    // A new command of the component name, with its resource data bound; empty for a name that the
    // module does not have (letter case matters).
    TRef<CCmdEffect> CreateCommand(const std::string& name) const;

  private:
    struct SLibrary;
    std::unique_ptr<SLibrary> library_;
    std::string language_problem_;
    std::vector<std::string> names_;
};

// A command ready to be set and run in a context: its repository is defined and complete.
void PrepareCommand(CCmdEffect& command, ICommandExecutionContext* context);
// Runs a prepared command on the context's document, as the editor does: Setup, then Do. Error 100
// when cancelled; the document is changed only on success.
CErrorAutoThrow RunCommand(CCmdEffect& command, ICommandExecutionContext* context);
