#pragma once

#include <string>
#include <vector>

#include "host/graphics/CRowIteratorBands.h"

// A picture reduced to fit a cell, as 8-bit colour; its alpha is laid over the sheet's background.
CRowIteratorBands Reduced(const CRowIteratorBands& picture, CSize cell);

// Pictures side by side, each reduced to fit its cell, with its name below.
class CContactSheet {
  public:
    CContactSheet(int columns, CSize cell) : columns_(columns), cell_(cell) {}

    // Reduces the picture and keeps it; its alpha is laid over the sheet's background.
    void Add(const std::string& name, const CRowIteratorBands& picture);
    // The sheet, 8-bit colour.
    CRowIteratorBands Make() const;

  private:
    struct SEntry {
        std::string name;
        CRowIteratorBands thumbnail;  // 8-bit colour
    };
    int columns_;
    CSize cell_;
    std::vector<SEntry> entries_;
};
