#pragma once

#include <stdexcept>
#include <string>
#include <utility>

// What kind of trouble a job met.
enum class EJobFault {
    Refused,          // a parameter's name, or a value, that does not fit
    Preset,           // a preset that is missing or damaged, or cannot be written
    UnknownEffect,    // a name that no effect has
    UnknownLanguage,  // a code that no language has
    UnknownResource,  // a name that no pattern, or no texture, has
    Unreadable,       // a pattern or texture whose file cannot be read
    Resource,         // a picture of the user's library that cannot be written or removed
    NotLoaded,        // the installation's module cannot be loaded
    Effect,           // the effect reported an error
    Cancelled,        // the progress sink asked to stop
    Memory,           // there is not enough memory
    Scratch,          // there is no room on the disk for the pixels that memory does not hold
    Fault,            // a fault of this system
};

// Why a job could not be made, set or run: what is wrong and, where there is one, what would be
// right. Both are one line of UTF-8 without a full stop.
class CJobError : public std::runtime_error {
  public:
    CJobError(EJobFault fault, const std::string& what, std::string hint = {})
        : std::runtime_error(what), fault_(fault), hint_(std::move(hint)) {}
    EJobFault Fault() const { return fault_; }
    const std::string& Hint() const { return hint_; }

  private:
    EJobFault fault_;
    std::string hint_;
};
