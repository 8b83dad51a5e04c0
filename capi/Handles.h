#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "capi/cmdtexture.h"
#include "job/CJobLibrary.h"
#include "job/CRecipe.h"

// What the handles of the C interface stand for. Records point into the texts kept beside them.

struct cmdtexture_error {
    cmdtexture_status status;
    std::string message, hint;
};

struct cmdtexture_library {
    explicit cmdtexture_library(CJobLibrary opened);

    CJobLibrary jobs;
    std::vector<SEffectInfo> effects;
    std::vector<cmdtexture_effect_info> records;
    std::shared_ptr<void> spare_memory;  // kept for the next call as long as it lives
};

struct cmdtexture_effect {
    explicit cmdtexture_effect(CEffectJob made) : job(std::move(made)) { Describe(); }
    // Makes the parameters' records anew, for the canvas of now.
    void Describe();

    CEffectJob job;
    SEffectInfo info;
    std::vector<std::vector<const char*>> members, member_labels;
    std::vector<cmdtexture_parameter> records;
};

struct cmdtexture_recipe {
    CRecipe steps;
};

// Runs `work` at the border of the interface: whatever it throws becomes the status, and the error
// where the caller wants one.
cmdtexture_status Guard(cmdtexture_error** error, const std::function<void()>& work) noexcept;
// The same for calls that answer something; what they answer on failure is null.
template <class Answer>
Answer* GuardAnswer(cmdtexture_error** error, const std::function<Answer*()>& work) noexcept {
    Answer* answer = nullptr;
    Guard(error, [&] { answer = work(); });
    return answer;
}

// A handle or text that the caller gave. Throws CJobError, Refused, for a null one.
[[noreturn]] void RefuseNull(const char* name);
template <class Pointer>
Pointer Given(Pointer pointer, const char* name) {
    if (!pointer) RefuseNull(name);
    return pointer;
}

// Texts that the caller frees.
char* Duplicate(const std::string& text);
char** Duplicate(const std::vector<std::string>& names);
