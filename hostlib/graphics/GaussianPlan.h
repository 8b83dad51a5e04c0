#pragma once

#include <vector>

#include "host/core/Geometry.h"

namespace blur {

// What a blur may leave out of the exact Gaussian.
struct SGaussianAccuracy {
    // The weight of the kernel's ends that are cut off; the rest is scaled up to 1.
    double tail;
    // The share of a wave, at the worst wave length, that interpolating between rows distorts.
    double distortion;
    // The Gaussian that interpolates: its standard deviation in steps, and how many rows it reaches
    // to each side.
    double spread;
    int reach;
};

// How an image is blurred: the weights, in the shape in which rows are summed.
//
// Every `step`th row is blurred down the columns, then along itself. The variances of successive
// Gaussians add up, so with a step above 1 a part of the blur is left to do, and that part brings
// back the rows in between: they are interpolated with a Gaussian, which is exact but for the
// frequencies near those that the step folds over, and they have been smoothed away by then. Large
// blurs cost no more than small ones that way.
struct SGaussianPlan {
    // Half kernels: entry k is the weight of both samples that lie k away from the centre; the
    // centre is a pair of itself. The entries sum to one half.
    std::vector<double> down;
    std::vector<double> along;
    int step = 1;
    // between[p]: the weights of the blurred rows that make row step * k + p, from row number
    // k - before on; they sum to 1. Empty when step is 1.
    std::vector<std::vector<double>> between;
    int before = 0;

    // How many blurred rows one row of the result is made of.
    int Span() const { return step == 1 ? 1 : static_cast<int>(between.front().size()); }
    // How many blurred rows `height` rows of the result need; the first is number -before.
    int BlurredRows(int height) const { return (height - 1) / step + Span(); }
    // The most terms that the sums behind one sample have.
    int Terms() const { return static_cast<int>(down.size() + along.size()) + Span(); }
};

// The plan for an image of `size` and a standard deviation above 0 (in pixels; may be infinite).
SGaussianPlan PlanGaussian(double sigma, CSize size, const SGaussianAccuracy& accuracy);

}  // namespace blur
