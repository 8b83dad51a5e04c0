#include "host/windowing/Controls.h"

#include "hostlib/windowing/SDialogState.h"

CButton::CButton() = default;
CButton::~CButton() = default;

void CButton::SetCheck(bool checked) {
    if (!State() || (State()->value != 0) == checked) return;
    State()->value = checked ? 1 : 0;
    StateChanged();
}

bool CButton::GetCheck() const { return State() && State()->value != 0; }

namespace {

SListEntry* EntryOf(SControlState* list, int entry) {
    const bool there = list && entry >= 0 && entry < static_cast<int>(list->entries.size());
    return there ? &list->entries[static_cast<std::size_t>(entry)] : nullptr;
}

}  // namespace

CComboBox::CComboBox() = default;
CComboBox::~CComboBox() = default;

void CComboBox::ResetContent() {
    if (!State()) return;
    State()->entries.clear();
    State()->selected = -1;
    StateChanged();
}

int CComboBox::AddString(const CString& text) {
    if (!State()) return -1;
    State()->entries.push_back({text, 0});
    StateChanged();
    return static_cast<int>(State()->entries.size()) - 1;
}

void CComboBox::SetItemData(int entry, std::int64_t data) {
    if (SListEntry* found = EntryOf(State(), entry)) found->data = data;
}

std::int64_t CComboBox::GetItemData(int entry) const {
    const SListEntry* found = EntryOf(State(), entry);
    return found ? found->data : 0;
}

void CComboBox::SetCurSel(int entry) {
    if (!State() || State()->selected == entry) return;
    State()->selected = EntryOf(State(), entry) ? entry : -1;
    StateChanged();
}

int CComboBox::GetCurSel() const { return State() ? State()->selected : -1; }
