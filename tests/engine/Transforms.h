#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/CContour1.h"
#include "engine/CCotangentLines.h"
#include "engine/CGaps.h"
#include "engine/CGaussBlur.h"
#include "engine/CGlass.h"
#include "engine/CLuminance.h"
#include "engine/CPeriodic.h"
#include "engine/CTangentPipes.h"
#include "engine/CTerrasseRelief.h"
#include "support/Pictures.h"

// Running single transforms on small pictures.
namespace transforms {

using Values = std::vector<int>;

inline constexpr int kWholeImage[] = {0, 1000, 0, 1000};

// Fills the borders, then the transform's own parameters in their order.
inline void Fill(CAbstractTransform& transform, const Values& own,
                 const int (&borders)[4] = kWholeImage) {
    for (int i = 0; i < 4; ++i) transform.params[i].value = borders[i];
    for (std::size_t i = 0; i < own.size(); ++i) {
        transform.params[4 + static_cast<int>(i)].value = own[i];
    }
}

// Runs over `source`; the result is the destination, which starts unattached unless one is given.
inline CRowIteratorBands Run(CAbstractTransform& transform, const CRowIteratorBands& source,
                             CRowIteratorBands destination = {}) {
    CStatusControl status;
    transform.SetStatus(&status);
    transform.SetImages(&source, &destination);
    transform.Run().ThrowIfFailed();
    return destination;
}

template <class Transform>
CRowIteratorBands Apply(const CRowIteratorBands& source, const Values& own,
                        const int (&borders)[4] = kWholeImage) {
    Transform transform;
    Fill(transform, own, borders);
    return Run(transform, source);
}

// A picture of one row (or more) of pixels, given sample by sample.
inline CRowIteratorBands Picture(CNPixelFormat format, int width, const Values& samples) {
    const int channels = format.Channels();
    const int height = static_cast<int>(samples.size()) / channels / width;
    return pictures::Make(format, width, height, [&](int x, int y, int c) {
        return samples[static_cast<std::size_t>((y * width + x) * channels + c)];
    });
}

// All samples in memory order.
inline Values Samples(const CRowIteratorBands& image) {
    Values samples;
    for (int y = 0; y < image.GetHeight(); ++y) {
        for (int x = 0; x < image.GetWidth(); ++x) {
            for (int c = 0; c < image.GetPixelFormat().Channels(); ++c) {
                samples.push_back(pictures::Sample(image, x, y, c));
            }
        }
    }
    return samples;
}

// Every transform with work of its own to do. Those that compute pixels, the first kKernels, have
// row kernels; those that draw strokes have not.
struct SKind {
    const char* name;
    std::unique_ptr<CAbstractTransform> (*make)();
};

template <class Transform>
std::unique_ptr<CAbstractTransform> Make() {
    return std::make_unique<Transform>();
}

inline constexpr int kKernels = 7;
inline constexpr SKind kAll[] = {
    {"CLuminance", Make<CLuminance>},
    {"CPeriodic3", Make<CPeriodic3>},
    {"CPeriodic5", Make<CPeriodic5>},
    {"CPeriodic6", Make<CPeriodic6>},
    {"CContour1", Make<CContour1>},
    {"CTerrasseRelief", Make<CTerrasseRelief>},
    {"CGlass", Make<CGlass>},
    {"CGaps", Make<CGaps>},
    {"CCotangentLines", Make<CCotangentLines>},
    {"CTangentPipes", Make<CTangentPipes>},
};

}  // namespace transforms
