#pragma once

#include <filesystem>
#include <string>

#include "hostlib/system/CFileError.h"

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

// Why a file could not be read or written, and what kind of trouble that is.
class CImageFileError : public CFileError {
  public:
    CImageFileError(ENFault fault, const std::filesystem::path& file, const std::string& what,
                    std::string hint = {})
        : CFileError(file, what, std::move(hint)), fault_(fault) {}
    CImageFileError(ENFault fault, const CFileError& error) : CFileError(error), fault_(fault) {}
    ENFault Fault() const noexcept { return fault_; }

  private:
    ENFault fault_;
};

using ::SystemText;

// A file name for a message.
inline std::string DisplayName(const std::filesystem::path& file) { return DisplayText(file); }

}  // namespace imagefile
