#pragma once

// Pixel geometry in the framework's convention: right and bottom are one past the last pixel.
struct CPoint {
    int x = 0;
    int y = 0;
    friend bool operator==(const CPoint&, const CPoint&) = default;
};

struct CSize {
    int cx = 0;
    int cy = 0;
    int LargerSide() const { return cx > cy ? cx : cy; }
    friend bool operator==(const CSize&, const CSize&) = default;
};

struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool IsRectEmpty() const { return right <= left || bottom <= top; }
    void SetRectEmpty() { *this = {}; }
    void InflateRect(int dx, int dy) {
        left -= dx;
        right += dx;
        top -= dy;
        bottom += dy;
    }
    friend bool operator==(const CRect&, const CRect&) = default;
};
