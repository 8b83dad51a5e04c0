#include "module/RTRACE.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <exception>
#include <string>

#include "host/system/DebugOutput.h"
#include "module/TraceSwitch.h"

namespace {

bool IsEmpty(const wchar_t* text) { return !text || *text == L'\0'; }

// The C library's wide printf takes narrow texts for %s, unless the conversion is marked with l.
std::wstring ToLibraryFormat(const wchar_t* format) {
    std::wstring translated;
    while (*format) {
        translated += *format;
        if (*format++ != L'%') continue;
        const std::size_t modifiers = std::wcsspn(format, L"-+ #0123456789.*");
        translated.append(format, modifiers);
        format += modifiers;
        switch (*format) {
            case L'\0':
                break;
            case L's':
                translated += L"ls";
                break;
            case L'c':
                translated += L"lc";
                break;
            case L'S':
                translated += L's';
                break;
            case L'C':
                translated += L'c';
                break;
            default:
                translated += *format;
                break;
        }
        if (*format) ++format;
    }
    return translated;
}

// The text of a line. The C library does not measure wide text beforehand: its memory stream does
// so while it formats, and ends up with one buffer for the whole line.
class CLineBuffer {
  public:
    CLineBuffer() : stream_(open_wmemstream(&text_, &length_)) {}
    CLineBuffer(const CLineBuffer&) = delete;
    CLineBuffer& operator=(const CLineBuffer&) = delete;
    ~CLineBuffer() {
        Text();
        std::free(text_);
    }

    void Append(const wchar_t* format, ...) {
        std::va_list arguments;
        va_start(arguments, format);
        AppendList(format, arguments);
        va_end(arguments);
    }
    void AppendList(const wchar_t* format, std::va_list arguments) {
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the callers have started the list
        complete_ = complete_ && stream_ && std::vfwprintf(stream_, format, arguments) >= 0;
    }
    // Ends the text; null when memory ran out on the way.
    const wchar_t* Text() {
        if (stream_) complete_ = std::fclose(stream_) == 0 && complete_;
        stream_ = nullptr;
        return complete_ ? text_ : nullptr;
    }

  private:
    wchar_t* text_ = nullptr;
    std::size_t length_ = 0;
    std::FILE* stream_;
    bool complete_ = true;
};

}  // namespace

bool RTRACE::IsWritten() const {
    return TraceSwitch::OfThisModule().Enabled() && tag_ && wcscasecmp(tag_, kTraceDebug) != 0;
}

void RTRACE::write(const wchar_t* format, ...) const noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    try {
        if (IsWritten()) {
            CLineBuffer line;
            line.Append(L"[%d]%ls", gettid(), tag_);
            if (!IsEmpty(function_)) line.Append(L"[%ls]\t", function_);
            if (IsEmpty(file_)) {
                line.Append(L":\t");
            } else {
                line.Append(L"[%ls(%d)]:\t", file_, line_);
            }
            line.AppendList(ToLibraryFormat(format).c_str(), arguments);
            if (const wchar_t* text = line.Text()) OutputDebugStringW(text);
        }
    } catch (const std::exception&) {
        // No memory for the line: tracing never disturbs what it traces.
    }
    va_end(arguments);
}
