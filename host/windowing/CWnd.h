#pragma once

#include <span>

#include "host/core/CString.h"
#include "host/core/HostApi.h"

class CDialog;
struct SControlState;

inline constexpr unsigned WM_ACTIVATE = 0x0006;
inline constexpr unsigned WM_ERASEBKGND = 0x0014;
inline constexpr unsigned WM_NOTIFY = 0x004E;
inline constexpr unsigned WM_COMMAND = 0x0111;
inline constexpr unsigned WM_HSCROLL = 0x0114;
inline constexpr int BN_CLICKED = 0;
inline constexpr int RN_ROTATED = 1;  // a dial was turned
inline constexpr int CBN_SELENDOK = 9;
inline constexpr int EN_CHANGE = 0x0300;
inline constexpr int TTN_GETDISPINFOW = -530;

// A message on its way to a dialog: for WM_COMMAND and WM_NOTIFY with the control and its
// notification code, else 0; `data` is what the message is about, or null.
struct SMessage {
    unsigned message = 0;
    int code = 0;
    int id = 0;
    void* data = nullptr;
};

// What WM_ACTIVATE is about. The other window is the one that loses, or gets, the focus.
struct SActivation {
    bool active = false;
    const class CWnd* other = nullptr;
};

// What TTN_GETDISPINFOW is about: the control to tell of, and the buffer for its text.
struct TOOLTIPTEXTW {
    static constexpr unsigned TTF_IDISHWND = 1;  // the tool is a control
    unsigned flags = 0;
    int id = 0;
    wchar_t text[80] = {};  // ends with a zero
};

// A class's message entries, and those of the class that it derives from.
using MessageHandler = void (CWnd::*)(SMessage&);
struct SMessageEntry {
    static constexpr int kAnyId = -1;
    unsigned message;
    int code;
    int id;
    MessageHandler handler;
};
struct AFX_MSGMAP {
    const AFX_MSGMAP* base;
    std::span<const SMessageEntry> entries;
};

// A window: a dialog, or one control of a dialog. A control does nothing until it is attached.
class HOST_API CWnd {
  public:
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // Becomes the control `id` of a dialog; false when the dialog has none.
    bool Attach(CDialog& dialog, int id);
    // Disabled controls take no input.
    void EnableWindow(bool enable);
    bool IsWindowEnabled() const;
    void SetWindowText(const CString& text);
    CString GetWindowText() const;

    // Hands the message to the first entry that fits, the most derived class first. Whether there
    // was one.
    bool Dispatch(SMessage& message);

  protected:
    CWnd();
    virtual const AFX_MSGMAP* GetMessageMap() const;
    // The control's state; null while it is not attached.
    SControlState* State() const { return state_; }
    // The state is another one now: whoever shows it is told.
    void StateChanged() const;

  private:
    CDialog* dialog_ = nullptr;
    SControlState* state_ = nullptr;
};
