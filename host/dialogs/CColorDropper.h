#pragma once

#include "host/core/Geometry.h"
#include "host/core/HostApi.h"
#include "host/graphics/ColorRef.h"

// Mixed into a dialog that takes colours out of the picture. At most one dropper is active in the
// process.
class HOST_API CColorDropper {
  public:
    CColorDropper(const CColorDropper&) = delete;
    CColorDropper& operator=(const CColorDropper&) = delete;

    static bool IsActive();
    // Takes the dropper, unless another one is active; or gives it up.
    void EnableColorDropper(bool enable);
    bool IsEnabled() const;

    // A colour was picked with the left or the right button, or the pointer moved over one.
    virtual void OnColorDropperLeft(COLORREF colour);
    virtual void OnColorDropperRight(COLORREF colour);
    virtual void OnColorDropperMouseMove(COLORREF colour);
    virtual bool WantColorDropperMouseMove() const;
    // The side of the square, in pixels, whose mean is picked.
    virtual int SampleSize() const;

    // The control that picked colours are for; 0: the dialog decides.
    void AimAt(int control_id) { target_ = control_id; }
    int Target() const { return target_; }

  protected:
    CColorDropper();
    virtual ~CColorDropper();

  private:
    int target_ = 0;
};
