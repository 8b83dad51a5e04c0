#pragma once

#include "host/graphics/CImageOp.h"

// A Gaussian blur of every channel that the source shows. `sigma` is the standard deviation in
// pixels (0 copies); edges repeat the outer sample; results are rounded to nearest. No 8-bit sample
// is off the exact value by more than 1, no 16-bit one by more than 8. `mode` is 3.
class HOST_API CIoGaussianBlur : public CImageOp {
  public:
    CIoGaussianBlur(double sigma, int mode);
    CErrorAutoThrow operator()(CRowIteratorBands& destination,
                               const CRowIteratorBands& source) override;

  private:
    double sigma_;
};
