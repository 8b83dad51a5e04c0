#pragma once

#include <memory>

#include "host/core/CString.h"
#include "host/core/HostApi.h"

inline constexpr int ERROR_ACCESS_DENIED = 5;
inline constexpr int ERROR_ALREADY_EXISTS = 183;

struct SOpenEvent;

// A handle on a named event: a flag that all processes of one user share. An event exists while
// any handle on it is open in any process; the end of a process, however it comes, closes the
// process's handles. Once signalled, an event stays so.
class HOST_API CEventHandle {
  public:
    CEventHandle() noexcept;  // null: a handle on no event
    explicit CEventHandle(std::unique_ptr<SOpenEvent> event) noexcept;
    CEventHandle(CEventHandle&& other) noexcept;
    CEventHandle& operator=(CEventHandle&& other) noexcept;
    ~CEventHandle();

    explicit operator bool() const noexcept { return event_ != nullptr; }
    // Signals the event; false for the null handle or when the system refuses.
    bool Set() noexcept;
    // Whether the event is signalled now, without waiting; false for the null handle.
    bool IsSignalled() const noexcept;

  private:
    std::unique_ptr<SOpenEvent> event_;
};

// The outcome of CreateEventW: 0 for a new event, ERROR_ALREADY_EXISTS with a handle on the one
// that was there, any other error with the null handle.
struct SCreatedEvent {
    CEventHandle event;
    int error = 0;
};

// A handle on the event of that name; null when there is none. Names are texts without slashes
// that do not begin with a full stop; letter case matters.
HOST_API CEventHandle OpenEventW(const CString& name);
// Makes the event, not signalled, or opens the one that exists as it is.
HOST_API SCreatedEvent CreateEventW(const CString& name);
