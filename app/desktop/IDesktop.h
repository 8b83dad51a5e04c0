#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/core/Geometry.h"
#include "host/graphics/CStatusControl.h"

struct IToolkit;

// What became of a result: it is in its file, or there is a reason why not, or neither: the work
// was stopped.
struct SOutcome {
    bool written = false;
    std::string error;
};

// Makes results of the open dialog's values, and writes them.
struct IResultMaker {
    virtual ~IResultMaker() = default;
    // A name to begin with when the user is asked for one.
    virtual std::string Suggestion() const = 0;
    // Why a result cannot go to a file; empty when it can. `replace`: instead of one that exists.
    virtual std::string Check(const std::string& file, bool replace) const = 0;
    // Makes the result and writes it whole or not at all. Called on a thread of its own; the values
    // and the picture stay as they are for so long.
    virtual SOutcome Make(const std::string& file, bool replace, IProgressSink& progress) = 0;
};

// What a program says when it asks for windows.
struct SDesktopOptions {
    std::string input;       // the picture's file, for titles and command lines
    std::string output;      // where the result will go; empty: not known yet
    bool overwrite = false;  // `output` may be replaced when it exists
    std::string language;    // code of the language of the toolkit's own texts
    CSize size = {};         // of the picture, and its bits a sample, for a document
    int depth = 8;           // that gets its picture while the window is open
    // Asked now and then, until true, while the document has no picture: whether it got one now, or
    // will get none. May be empty.
    std::function<bool()> picture_came = {};
    // Takes a photograph into the user's library, as a pattern or a texture, under the category;
    // answers what went wrong, or nothing. Empty where there is no such library.
    std::function<std::string(bool pattern, const std::string& file, const std::string& category)>
        add_picture = {};
    std::function<bool()> interrupted = {};  // whether the process was asked to stop; may be empty
    IResultMaker* results = nullptr;         // not owned; null: OK only takes the values over
};

// Windows on a screen. It lives in a library of its own, so that programs without windows load no
// toolkit; there is one at a time, used by the thread that made it.
struct IDesktop {
    virtual ~IDesktop() = default;
    virtual IToolkit& Toolkit() = 0;
    virtual void ShowError(const std::string& text) = 0;
};

// The one function of the library, under this name. Ends the process with status 7 and a message
// when the screen cannot be reached.
inline constexpr const char* kDesktopLibrary = "libcmdtexture-desktop.so";
inline constexpr const char* kMakeDesktop = "MakeDesktop";
using MakeDesktopFunction = IDesktop* (*)(const SDesktopOptions& options);
