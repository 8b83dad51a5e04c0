#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/core/Geometry.h"

struct IToolkit;

// What a program says when it asks for windows.
struct SDesktopOptions {
    std::string input;     // the picture's file, for titles and command lines
    std::string output;    // where the result will go; empty: not known yet
    std::string language;  // code of the language of the toolkit's own texts
    CSize size = {};       // of the picture, and its bits a sample, for a document
    int depth = 8;         // that gets its picture while the window is open
    // Asked now and then, until true, while the document has no picture: whether it got one now, or
    // will get none. May be empty.
    std::function<bool()> picture_came = {};
    // Takes a photograph into the user's library, as a pattern or a texture, under the category;
    // answers what went wrong, or nothing. Empty where there is no such library.
    std::function<std::string(bool pattern, const std::string& file, const std::string& category)>
        add_picture = {};
    std::function<bool()> interrupted = {};  // whether the process was asked to stop; may be empty
};

// Windows on a screen. It lives in a library of its own, so that programs without windows load no
// toolkit; there is one at a time, used by the thread that made it.
struct IDesktop {
    virtual ~IDesktop() = default;
    virtual IToolkit& Toolkit() = 0;
    // Asks for the file to write, which may exist: the user was then asked whether to replace it.
    // Empty when the user thinks better of it.
    virtual std::string AskOutputFile(const std::string& suggestion) = 0;
    virtual void ShowError(const std::string& text) = 0;
};

// The one function of the library, under this name. Ends the process with status 7 and a message
// when the screen cannot be reached.
inline constexpr const char* kDesktopLibrary = "libcmdtexture-desktop.so";
inline constexpr const char* kMakeDesktop = "MakeDesktop";
using MakeDesktopFunction = IDesktop* (*)(const SDesktopOptions& options);
