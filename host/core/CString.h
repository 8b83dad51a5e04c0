#pragma once

#include <string>
#include <string_view>

#include "host/core/HostApi.h"

// The framework's wide-character string: every text between module and host is one.
class CString {
  public:
    CString() = default;
    CString(const wchar_t* text) : text_(text ? text : L"") {}  // NOLINT: texts convert freely
    CString(std::wstring text) : text_(std::move(text)) {}      // NOLINT

    const wchar_t* GetString() const { return text_.c_str(); }
    const std::wstring& Text() const { return text_; }
    bool IsEmpty() const { return text_.empty(); }
    int GetLength() const { return static_cast<int>(text_.size()); }
    void Empty() { text_.clear(); }

    // Below, equal to or above 0 as this text sorts before, equals or sorts after the other;
    // letter case matters.
    int Compare(const CString& other) const { return text_.compare(other.text_); }

    CString& operator+=(const CString& other) {
        text_ += other.text_;
        return *this;
    }
    friend CString operator+(CString left, const CString& right) { return left += right; }
    friend bool operator==(const CString&, const CString&) = default;
    friend bool operator<(const CString& a, const CString& b) { return a.Compare(b) < 0; }

  private:
    std::wstring text_;
};

// UTF-8 to a wide text and back. A byte sequence that is not UTF-8 becomes U+FFFD.
HOST_API CString FromUtf8(std::string_view text);
HOST_API std::string ToUtf8(const CString& text);
