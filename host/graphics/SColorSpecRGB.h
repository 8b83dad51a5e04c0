#pragma once

// The colour specification of a document: how much red, green and blue weigh in the brightness of
// a colour. Weights are taken relative to their sum; the defaults are those of video (BT.601).
struct SColorSpecRGB {
    double red = 0.299;
    double green = 0.587;
    double blue = 0.114;
};
