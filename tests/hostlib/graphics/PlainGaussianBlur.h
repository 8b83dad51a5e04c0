#pragma once

#include "host/graphics/CImageOp.h"

// The blur, built a second time without the versions of its row loops for newer processors: its
// sources are compiled into the test with CIoGaussianBlur renamed.
class CPlainGaussianBlur : public CImageOp {
  public:
    CPlainGaussianBlur(double sigma, int mode);
    CErrorAutoThrow operator()(CRowIteratorBands& destination,
                               const CRowIteratorBands& source) override;

  private:
    double sigma_;
};
