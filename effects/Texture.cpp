#include "effects/Texture.h"

#include "effects/AlphaMerge.h"
#include "host/graphics/CIoGaussianBlur.h"
#include "host/graphics/ImageHelpers.h"

namespace {

constexpr CColorRef kBlack{0};
constexpr int kCompatibleMode = 2;
constexpr int kBlurMode = 3;
constexpr int kBumpMode = 1;

// The relief: the texture at its size, tiled over an image one pixel larger than the source on
// every side.
CErrorAutoThrow MakeBump(const CRowIteratorBands& source, const CRowIteratorBands& texture,
                         int size, CRowIteratorBands& bump) {
    bump.CreateGreyscale(source.GetWidth() + 2, source.GetHeight() + 2, kBlack).Ignore();
    const CRect place = source.GetRect();
    bump.SetOrigin({place.left - 1, place.top - 1});
    CRowIteratorBands scaled;
    CErrorAutoThrow error =
        Resample(nullptr, texture, scaled, static_cast<int>(size / 100.0 * texture.GetWidth()),
                 static_cast<int>(size / 100.0 * texture.GetHeight()), true, false);
    if (error.Failed()) return error;
    return RowIterator_Tile(bump, scaled);
}

// Softens the relief; `smoothness` is 1 to 100.
CErrorAutoThrow Soften(CStatusControl* status, int smoothness, CRowIteratorBands& bump) {
    CRowIteratorBands soft;
    CErrorAutoThrow error =
        soft.CreateCompatible(bump.GetWidth(), bump.GetHeight(), bump, kCompatibleMode);
    if (error.Failed()) return error;
    if (status) status->SetNumberOfSteps(2);
    CStatusControl step(status);
    CIoGaussianBlur blur(smoothness / 100.0 * 8.0, kBlurMode);
    blur.SetStatusControl(&step);
    error = blur(soft, bump);
    if (!error.Failed()) bump.Consume(soft);
    return error;
}

}  // namespace

CErrorAutoThrow ApplyTexture(CStatusControl* status, CRowIteratorBands& source,
                             CRowIteratorBands& destination, const CRowIteratorBands& texture,
                             const CBumpMapEffectSettings& settings, int size) {
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    CRowIteratorBands bump;
    CErrorAutoThrow error = MakeBump(source, texture, size, bump);
    if (!error.Failed()) error = destination.Copy(source, 0);
    if (error.Failed()) return error;

    const int modify_mode = source.GetImageModifyMode();
    const CNPixelFormat format = source.GetPixelFormat();
    const bool merge = HasHideableAlpha(format);
    if (merge) {
        HideAlpha(source, format, modify_mode);
        HideAlpha(destination, format, modify_mode);
    }
    if (settings.smoothness != 0) error = Soften(status, settings.smoothness, bump);
    if (!error.Failed()) {
        error = BumpMap2(status, settings, source, bump, CRowIteratorBands(), destination,
                         kBumpMode, nullptr);
    }
    if (merge && !error.Failed()) error = MergeAlpha(source, destination, format, modify_mode);
    if (merge) source.SetChannelAccess(ENChannel::All, modify_mode).Ignore();
    return error;
}
