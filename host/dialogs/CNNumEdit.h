#pragma once

#include <cstdint>

#include "host/windowing/CDialog.h"

// The further arguments of a number field's set-up, in their order. They tune a popup slider that
// this host's field does not have: it draws its spin button from the range alone.
struct SNumEditSetUp {
    void* pointer = nullptr;
    int first = -1;
    int second = 4;
    int third = 500;
    int fourth = 0;
    int fifth = 3;
    bool sixth = true;
    bool seventh = false;
    int eighth = 0;
    bool ninth = true;
};

// A field for a whole number within a range. It reports EN_CHANGE when its user gives it another
// value; a text that is no number of the range is shown as wrong, and the value stays.
class HOST_API CNNumEdit : public CWnd {
  public:
    CNNumEdit();
    ~CNNumEdit() override;
    bool SetUp(CDialog& dialog, int id, std::int32_t minimum, std::int32_t maximum,
               std::int32_t value, const SNumEditSetUp& arguments);
    std::int32_t GetValue() const;
    // Reports nothing.
    void SetValue(std::int32_t value);
    void GetRange(std::int32_t& minimum, std::int32_t& maximum) const;
};
