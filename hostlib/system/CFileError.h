#pragma once

#include <exception>
#include <filesystem>
#include <string>

#include "host/core/HostApi.h"

// Why a file could not be read or written. All texts are one line, without a full stop.
class HOST_API CFileError : public std::exception {
  public:
    CFileError(const std::filesystem::path& file, const std::string& what, std::string hint = {});
    // "FILE: what is wrong".
    const char* what() const noexcept override { return message_.c_str(); }
    // What the user may do about it; often empty.
    const std::string& Hint() const noexcept { return hint_; }

  private:
    std::string message_;
    std::string hint_;
};

// The system's own text for an `errno` value.
HOST_API std::string SystemText(int error);

// A text for people, such as a file's name, which may hold anything: control characters are written
// as \xNN so that a line stays one line and cannot drive the terminal. Other bytes stay as they
// are.
HOST_API std::string DisplayText(const std::string& text);
