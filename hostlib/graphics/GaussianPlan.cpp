#include "hostlib/graphics/GaussianPlan.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace blur {
namespace {

double Gaussian(double x, double sigma) { return std::exp(-0.5 * (x / sigma) * (x / sigma)); }

// The sum of the Gaussian over all whole numbers. From 2 on it equals the integral to 30 digits.
double SumOfGaussian(double sigma) {
    if (sigma >= 2) return sigma * std::sqrt(2 * std::numbers::pi);
    double sum = 1;
    for (int x = 1; x <= 30; ++x) sum += 2 * Gaussian(x, sigma);
    return sum;
}

// The half kernel without its ends of weight `tail`, scaled to sum up to one half. From `limit` on
// all samples of the image's axis are the outer ones: the last entry stands for all beyond it.
std::vector<double> HalfKernel(double sigma, double tail, int limit) {
    const double whole = SumOfGaussian(sigma);
    std::vector<double> weights{0.5 / whole};
    double covered = weights[0];
    for (int x = 1; x <= limit && 0.5 - covered > tail / 2; ++x) {
        weights.push_back(Gaussian(x, sigma) / whole);
        covered += weights.back();
    }
    if (0.5 - covered > tail / 2) {
        weights.back() += 0.5 - covered;
    } else {
        for (double& weight : weights) weight *= 0.5 / covered;
    }
    return weights;
}

// The largest step that keeps the distortion. A wave of frequency f leaves with the factor
// exp(-2 pi^2 a^2 f^2) of the first Gaussian (deviation a) and comes back with the frequency
// f - 1 / step and the factor exp(-2 pi^2 c^2 (f - 1 / step)^2) of the interpolating one
// (c = spread * step); the product is largest at f = (c / sigma)^2 / step, and is there
// exp(-2 pi^2 spread^2 (1 - (c / sigma)^2)).
int LargestStep(double sigma, int height, const SGaussianAccuracy& accuracy) {
    const double spread = accuracy.spread;
    const double pi = std::numbers::pi;
    const double part = -std::log(accuracy.distortion) / (2 * pi * pi * spread * spread);
    // A small image gains nothing from a step that leaves only a few of its rows.
    return static_cast<int>(
        std::clamp(sigma * std::sqrt(1 - part) / spread, 1.0, std::max(1.0, height / 4.0)));
}

// The weights of the rows at -(reach - 1) to reach steps for a row at `offset` from row 0.
std::vector<double> Interpolation(int offset, int step, const SGaussianAccuracy& accuracy) {
    std::vector<double> weights;
    for (int k = 1 - accuracy.reach; k <= accuracy.reach; ++k) {
        weights.push_back(Gaussian(k - static_cast<double>(offset) / step, accuracy.spread));
    }
    const double whole = std::reduce(weights.begin(), weights.end());
    for (double& weight : weights) weight /= whole;
    return weights;
}

}  // namespace

SGaussianPlan PlanGaussian(double sigma, CSize size, const SGaussianAccuracy& accuracy) {
    SGaussianPlan plan;
    plan.along = HalfKernel(sigma, accuracy.tail, size.cx - 1);
    plan.step = LargestStep(sigma, size.cy, accuracy);
    if (plan.step == 1) {
        plan.down = HalfKernel(sigma, accuracy.tail, size.cy - 1);
        return plan;
    }
    // Blurred rows lie up to `reach` steps outside the image.
    const int limit = size.cy - 1 + accuracy.reach * plan.step;
    const double left = accuracy.spread * plan.step;
    plan.down = HalfKernel(std::sqrt(sigma * sigma - left * left), accuracy.tail, limit);
    plan.before = accuracy.reach - 1;
    for (int offset = 0; offset < plan.step; ++offset) {
        plan.between.push_back(Interpolation(offset, plan.step, accuracy));
    }
    return plan;
}

}  // namespace blur
