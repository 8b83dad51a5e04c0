#pragma once

#include <cstdint>

// Level tags, each the start of a line. Lines with the debug tag are never written.
inline constexpr const wchar_t* kTraceInformation = L"[BRWx64]\t[INFO]\t\t";
inline constexpr const wchar_t* kTraceDebug = L"[BRWx64]\t[DEBUG]\t";

// A trace point: made on the stack where something is worth a line in the debugger output, which
// is written when tracing is on for the user's logon. Texts are not copied and may be null; `line`
// counts with `file` only.
class RTRACE {
  public:
    RTRACE(const wchar_t* function, const wchar_t* file, const wchar_t* tag, std::int32_t line)
        : function_(function), file_(file), tag_(tag), line_(line) {}
    virtual ~RTRACE() = default;

    // Writes one line. As in printf, but %s and %c take wide texts and characters, %S and %C
    // narrow ones. A line that cannot be composed is dropped.
    void write(const wchar_t* format, ...) const noexcept;

  private:
    bool IsWritten() const;

    const wchar_t* function_;
    const wchar_t* file_;
    const wchar_t* tag_;
    std::int32_t line_;
};
