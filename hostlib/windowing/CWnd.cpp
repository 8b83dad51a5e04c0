#include "host/windowing/CWnd.h"

#include "hostlib/windowing/SDialogState.h"

CWnd::CWnd() = default;
CWnd::~CWnd() = default;

bool CWnd::Attach(CDialog& dialog, int id) {
    dialog_ = &dialog;
    state_ = dialog.windows_->Find(id);
    return state_ != nullptr;
}

void CWnd::EnableWindow(bool enable) {
    if (!state_ || state_->enabled == enable) return;
    state_->enabled = enable;
    StateChanged();
}

bool CWnd::IsWindowEnabled() const { return state_ && state_->enabled; }

void CWnd::SetWindowText(const CString& text) {
    if (!state_ || state_->text == text) return;
    state_->text = text;
    StateChanged();
}

CString CWnd::GetWindowText() const { return state_ ? state_->text : CString(); }

void CWnd::StateChanged() const {
    if (state_) dialog_->windows_->Show(*state_);
}

bool CWnd::Dispatch(SMessage& message) {
    for (const AFX_MSGMAP* map = GetMessageMap(); map; map = map->base) {
        for (const SMessageEntry& entry : map->entries) {
            const bool fits = entry.message == message.message && entry.code == message.code &&
                              (entry.id == message.id || entry.id == SMessageEntry::kAnyId);
            if (!fits) continue;
            (this->*entry.handler)(message);
            return true;
        }
    }
    return false;
}

const AFX_MSGMAP* CWnd::GetMessageMap() const { return nullptr; }
