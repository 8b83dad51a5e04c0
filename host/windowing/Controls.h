#pragma once

#include <cstdint>

#include "host/windowing/CWnd.h"

// A check box.
class HOST_API CButton : public CWnd {
  public:
    CButton();
    ~CButton() override;
    void SetCheck(bool checked);
    bool GetCheck() const;
};

// A closed list. Entries are numbered from 0; -1 stands for none.
class HOST_API CComboBox : public CWnd {
  public:
    CComboBox();
    ~CComboBox() override;
    void ResetContent();
    int AddString(const CString& text);
    void SetItemData(int entry, std::int64_t data);
    std::int64_t GetItemData(int entry) const;  // 0 for no entry
    void SetCurSel(int entry);
    int GetCurSel() const;
};
