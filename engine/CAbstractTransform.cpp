#include "engine/CAbstractTransform.h"

#include <utility>

#include "host/core/RuntimeRandom.h"

CAbstractTransform::CAbstractTransform() {
    CRuntimeRandom::OfThisThread().Seed(0);
    params.Add(L"Left border", 0, 1000, 0, 0);
    params.Add(L"Right border", 0, 1000, 1000, 0);
    params.Add(L"Top border", 0, 1000, 0, 0);
    params.Add(L"Bottom border", 0, 1000, 1000, 0);
}

CErrorAutoThrow CAbstractTransform::PrepareImages() {
    width = source->GetWidth();
    height = source->GetHeight();
    bitsPerPixel = source->GetBPP();
    if (destination->IsAttached() && destination->GetPixelFormat() == source->GetPixelFormat()) {
        return {};
    }
    return destination->Copy(*source, 0);
}

namespace {

int Thousandths(int extent, int border) {
    return static_cast<int>(static_cast<double>(std::int64_t{extent} * border) * 0.001);
}

}  // namespace

void CAbstractTransform::ComputeBorders() {
    params.ClampValues();
    left = Thousandths(width, ValueOf(L"Left border"));
    right = Thousandths(width, ValueOf(L"Right border"));
    top = Thousandths(height, ValueOf(L"Top border"));
    bottom = Thousandths(height, ValueOf(L"Bottom border"));
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
}

CErrorAutoThrow CAbstractTransform::Prepare() {
    if (!source || !source->IsAttached() || !destination || !status) {
        return TolmErrorCode::UnusableInput;
    }
    CErrorAutoThrow prepared = PrepareImages();
    if (prepared.Failed()) return prepared;
    pixelFormat = source->GetPixelFormat();
    ComputeBorders();
    PrepareRun();
    ReadParameters();
    return {};
}

CErrorAutoThrow CAbstractTransform::Run() {
    CErrorAutoThrow prepared = Prepare();
    if (prepared.Failed()) return prepared;
    const int sample_bits = pixelFormat.Is16bit() ? 16 : 8;
    if (bitsPerPixel == sample_bits) return ProcessGrey();
    if (bitsPerPixel == sample_bits * 2) return ProcessGreyAlpha();
    if (bitsPerPixel == sample_bits * 3) return ProcessRGB();
    if (bitsPerPixel == sample_bits * 4) return ProcessRGBA();
    return {};
}
