#pragma once

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

// What an operation reads and writes; both outlive it.
struct CIoData {
    CIoData(CRowIteratorBands& to, const CRowIteratorBands& from) : output(to), input(from) {}
    CRowIteratorBands& output;
    const CRowIteratorBands& input;
};

// An operation of the graphics library that makes one image of another.
class CImageOp {
  public:
    virtual ~CImageOp() = default;
    // Where the operation reports progress and learns of cancellation; may be null; not owned.
    void SetStatusControl(CStatusControl* status) { status_ = status; }
    // Makes `destination` from `source`: its size, its place, and the format that the source shows
    // under its channel access. An attached destination of that geometry keeps its memory. Error
    // 100 when cancelled, 101 without a source, 102 without memory; the destination is then
    // undefined but safe to destroy.
    virtual CErrorAutoThrow operator()(CRowIteratorBands& destination,
                                       const CRowIteratorBands& source) = 0;
    CErrorAutoThrow operator()(const CIoData& data) { return (*this)(data.output, data.input); }

  protected:
    CStatusControl* Status() const { return status_; }

  private:
    CStatusControl* status_ = nullptr;
};
