#pragma once

#include <stdexcept>
#include <string>
#include <utility>

// What the program's exit status says.
enum class EExit : int {
    Done = 0,
    Fault = 1,        // a fault of ours
    Usage = 2,        // unknown option, effect or parameter, value out of range
    Unreadable = 3,   // input missing, unreadable, corrupt or truncated
    Unsupported = 4,  // input of a kind that is not supported
    Output = 5,       // output exists, cannot be written, disk full
    Limit = 6,        // pixels, memory
    Effect = 7,       // the module could not be loaded, or the effect reported an error
};

// Ends the program with a message: what is wrong, and where there is one, a hint.
class CCliError : public std::runtime_error {
  public:
    CCliError(EExit exit, const std::string& what, std::string hint = {})
        : std::runtime_error(what), exit_(exit), hint_(std::move(hint)) {}
    EExit Exit() const { return exit_; }
    const std::string& Hint() const { return hint_; }

  private:
    EExit exit_;
    std::string hint_;
};

// Ends the program with a status, when all has been said.
class CExitStatus : public std::exception {
  public:
    explicit CExitStatus(int status) : status_(status) {}
    int Status() const { return status_; }

  private:
    int status_;
};

// Ends the program because the user asked to: status 130 or 143.
class CInterrupted : public std::exception {};
