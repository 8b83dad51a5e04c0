#pragma once

#include <pybind11/numpy.h>

#include "capi/cmdtexture.h"

// An array of NumPy as a picture of the C interface: rows by columns for grey, rows by columns by 1
// to 4 samples for grey, grey with alpha, RGB and RGBA; uint8, or uint16 in the machine's order.
// Throws py::type_error for any other array.
//
// Pixels are used where they lie when the samples of each lie side by side, from red to blue or
// from blue to red, whatever the distance and the direction of the rows; any other array is copied.
class CArrayPicture {
  public:
    explicit CArrayPicture(const pybind11::array& array);

    const cmdtexture_image& Image() const { return image_; }
    // Brings what was written into the picture to the array, where that is another memory.
    void WriteBack() const;

  private:
    pybind11::array array_, held_;
    cmdtexture_image image_;
};

// The same for a selection: rows by columns of uint8.
class CArraySelection {
  public:
    // Throws py::value_error when its size is not that of the picture.
    CArraySelection(const pybind11::array& array, const cmdtexture_image& picture);

    const std::uint8_t* Pixels() const;
    std::ptrdiff_t Stride() const { return array_.strides(0); }

  private:
    pybind11::array array_;
};
