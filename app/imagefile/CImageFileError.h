#pragma once

#include <exception>
#include <filesystem>
#include <string>

namespace imagefile {

// What kind of trouble a file gave.
enum class ENFault {
    Usage,        // an output name that tells no known kind
    Unreadable,   // input missing, unreadable, empty, corrupt, truncated, or not what it says
    Unsupported,  // input of a kind, colour model or sample type that is not handled
    Output,       // output exists, is a folder, cannot be written, disk full
    Limit,        // too many pixels for us, a side too long for the format, memory
    Cancelled,    // the status control asked to stop
};

// Why a file could not be read or written. All texts are one line, without a full stop.
class CImageFileError : public std::exception {
  public:
    CImageFileError(ENFault fault, const std::filesystem::path& file, const std::string& what,
                    std::string hint = {});
    ENFault Fault() const noexcept { return fault_; }
    // "FILE: what is wrong".
    const char* what() const noexcept override { return message_.c_str(); }
    // What the user may do about it; often empty.
    const std::string& Hint() const noexcept { return hint_; }

  private:
    ENFault fault_;
    std::string message_;
    std::string hint_;
};

// The system's own text for an `errno` value.
std::string SystemText(int error);

// A file name for a message: control characters, which names may hold, are written as \xNN so that
// a message stays one line and cannot drive the terminal. Other bytes stay as they are.
std::string DisplayName(const std::filesystem::path& file);

}  // namespace imagefile
