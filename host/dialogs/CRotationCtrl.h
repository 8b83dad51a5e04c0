#pragma once

#include "host/windowing/CDialog.h"

// A dial for an angle in degrees, like a compass: clockwise from the top. It reports RN_ROTATED
// when its user turned it.
class HOST_API CRotationCtrl : public CWnd {
  public:
    CRotationCtrl();
    ~CRotationCtrl() override;
    bool Create(CDialog& dialog, int id);
    int GetAngle() const;
    // Reports nothing.
    void SetAngle(int degrees);
};
