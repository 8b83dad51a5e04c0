#include "engine/CTemplateA.h"

#include <algorithm>

namespace {

// Stores the low bits of a result.
template <class Sample>
void Store(Sample& to, int result) {
    to = static_cast<Sample>(result);
}

}  // namespace

CErrorAutoThrow CTemplateA::ProcessGrey() {
    return ProcessRows<1>([this](const auto* from, auto* to) {
        grey[0] = from[0];
        ComputeGrey();
        Store(to[0], outGrey);
    });
}

CErrorAutoThrow CTemplateA::ProcessGreyAlpha() {
    return ProcessRows<2>([this](const auto* from, auto* to) {
        grey[0] = from[0];
        alpha[0] = from[1];
        ComputeGreyAlpha();
        Store(to[0], outGrey);
        Store(to[1], outAlpha);
    });
}

CErrorAutoThrow CTemplateA::ProcessRGB() {
    return ProcessRows<3>([this](const auto* from, auto* to) {
        blue[0] = from[0];
        green[0] = from[1];
        red[0] = from[2];
        ComputeRGB();
        Store(to[0], outBlue);
        Store(to[1], outGreen);
        Store(to[2], outRed);
    });
}

CErrorAutoThrow CTemplateA::ProcessRGBA() {
    return ProcessRows<4>([this](const auto* from, auto* to) {
        blue[0] = from[0];
        green[0] = from[1];
        red[0] = from[2];
        alpha[0] = from[3];
        ComputeRGBA();
        Store(to[0], outBlue);
        Store(to[1], outGreen);
        Store(to[2], outRed);
        Store(to[3], outAlpha);
    });
}

CErrorAutoThrow CTemplateA::Announce() {
    status->SetProgressRange(bottom - top);
    return AnnounceSteps(*status, bottom - top);
}

void CTemplateA::MakeBand(const SBand& band) const {
    const int end = std::min(band.last, bottom);
    for (int at = std::max(band.first, top); at < end && left < right; ++at) {
        std::uint8_t* row = band.Row(at) + std::ptrdiff_t{left} * pixelFormat.PixelBytes();
        ComputeRow(row, row, right - left);
    }
}
