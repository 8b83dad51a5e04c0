#include "engine/CGaussBlur.h"

#include "host/graphics/CIoGaussianBlur.h"

CGaussBlur::CGaussBlur() { params.Add(L"Blur Strength", 0, 100, 20, 0); }

void CGaussBlur::ReadParameters() {
    params.ClampValues();
    blurStrength = ValueOf(L"Blur Strength");
}

CErrorAutoThrow CGaussBlur::PrepareImages() {
    width = source->GetWidth();
    height = source->GetHeight();
    bitsPerPixel = source->GetBPP();
    return {};
}

CErrorAutoThrow CGaussBlur::Blur() {
    if (blurStrength == 0) return destination->Copy(*source, 0);
    CIoGaussianBlur blur(blurStrength * 0.2, 3);
    blur.SetStatusControl(status);
    CErrorAutoThrow result = blur(*destination, *source);
    // A blur that was stopped leaves nothing that anybody could use.
    if (result.Failed() && destination->IsAttached()) destination->Copy(*source, 0).Ignore();
    return result;
}
