#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/core/Geometry.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "hostlib/graphics/LayerBlend.h"

struct IToolkit;

// What became of a result: it is done, or there is a reason why not, or neither: it was stopped.
struct SOutcome {
    bool done = false;
    std::string error;
};

// One of the effects, as a list shows it.
struct SEffectEntry {
    std::string id;                 // the component name
    std::string name, description;  // in the user's language
};

// How a file can be written: an option of the command line, such as "quality".
struct SFileOption {
    std::string name;
    std::vector<std::string> values;  // empty: numbers
    int minimum = 0, maximum = 0;     // of those
    std::string value;                // empty: as the picture's own file, where that tells
};

// What the windows ask of the program that opened them: pictures, effects and results. Where
// nothing else is said, all is called on the windows' thread, and errors are texts for the user;
// an empty one is none.
struct IEditHost {
    virtual ~IEditHost() = default;

    virtual std::vector<SEffectEntry> Effects() const = 0;
    // What an effect makes of a small picture with its usual values; unattached for nothing. On any
    // thread.
    virtual CRowIteratorBands Try(const std::string& effect, const CRowIteratorBands& picture,
                                  IProgressSink& progress) const = 0;
    // The dialog that is about to be cancelled is to be followed by that of this effect.
    virtual void GoOnWith(const std::string& effect) = 0;

    // Makes a file the picture, whose reading begins. An error leaves the picture as it was.
    virtual std::string Open(const std::string& file) = 0;
    // Whether the picture has come, or an error has, and the picture, unattached until then.
    virtual bool PictureCame() = 0;
    virtual CRowIteratorBands Picture() const = 0;

    // Makes the result the picture that the next effect starts from. On a thread of its own, as
    // Make. Applied are the names of the effects that were; TakeBack undoes the last one.
    virtual SOutcome Apply(const SLayerMix& mix, IProgressSink& progress) = 0;
    virtual std::vector<std::string> Applied() const = 0;
    virtual void TakeBack() = 0;

    // A name to begin with when the user is asked for one.
    virtual std::string Suggestion() const = 0;
    // How the kind of a file can be written, as it is set now; none for a kind that is not known.
    virtual std::vector<SFileOption> FileOptions(const std::string& file) const = 0;
    // How files are written from now on; none leaves that as it is.
    virtual void SetFileOptions(const std::vector<SFileOption>& options) = 0;
    // Why a result cannot go to a file. `replace`: instead of one that exists.
    virtual std::string Check(const std::string& file, bool replace) const = 0;
    // Makes the result and writes it whole or not at all. Called on a thread of its own; values and
    // picture stay as they are for so long.
    virtual SOutcome Make(const std::string& file, bool replace, const SLayerMix& mix,
                          IProgressSink& progress) = 0;
    // A command line that does what was applied and what the dialog shows, quoted for a shell;
    // `single` is that of the dialog's effect alone.
    virtual std::string CommandLine(const std::string& single, const std::string& output,
                                    const SLayerMix& mix) const = 0;
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
    IEditHost* host = nullptr;               // not owned; null: OK only takes the values over
};

// Windows on a screen. It lives in a library of its own, so that programs without windows load no
// toolkit; there is one at a time, used by the thread that made it.
struct IDesktop {
    virtual ~IDesktop() = default;
    virtual IToolkit& Toolkit() = 0;
    virtual void ShowError(const std::string& text) = 0;
    // What windows that are opened from now on are told.
    virtual SDesktopOptions& Options() = 0;
    // Lets the user choose one of the effects, and a picture if there is none yet; empty when the
    // user thinks better of it.
    virtual std::string ChooseEffect() = 0;
};

// The one function of the library, under this name. Ends the process with status 7 and a message
// when the screen cannot be reached.
inline constexpr const char* kDesktopLibrary = "libcmdtexture-desktop.so";
inline constexpr const char* kMakeDesktop = "MakeDesktop";
using MakeDesktopFunction = IDesktop* (*)(const SDesktopOptions& options);
