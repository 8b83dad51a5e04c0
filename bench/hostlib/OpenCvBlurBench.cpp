#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "BlurCases.h"

namespace {

cv::Mat View(const CRowIteratorBands& image) {
    const CNPixelFormat format = image.GetPixelFormat();
    const int type = CV_MAKETYPE(format.Is16bit() ? CV_16U : CV_8U, format.Channels());
    return {image.GetHeight(), image.GetWidth(), type,
            const_cast<std::uint8_t*>(image.Row<std::uint8_t>(0)),
            static_cast<std::size_t>(image.Stride())};
}

// The kernel's size is left to OpenCV, which then takes a smaller one than ours.
const bool registered = [] {
    bench::RegisterBlurs("opencv", [](benchmark::State& state, const CRowIteratorBands& source,
                                      CRowIteratorBands& destination, double sigma, int threads) {
        cv::setNumThreads(threads);
        const cv::Mat from = View(source);
        cv::Mat to = View(destination);
        bench::AgainstCopy(state, source, [&] {
            cv::GaussianBlur(from, to, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
        });
    });
    return true;
}();

}  // namespace
