#include "host/graphics/BumpMap2.h"

#include "hostlib/graphics/ReliefLighting.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

// Rise of white over black at depth 1, in pixels: a usual texture is then clearly seen and the
// picture still rules.
constexpr float kRise = 2.2F;

bool Fit(const CRowIteratorBands& source, const CRowIteratorBands& bump,
         const CRowIteratorBands& third, const CRowIteratorBands& destination) {
    return source.IsAttached() && bump.IsAttached() && destination.IsAttached() &&
           !third.IsAttached() && destination.GetWidth() == source.GetWidth() &&
           destination.GetHeight() == source.GetHeight() &&
           destination.GetAccessFormat() == source.GetAccessFormat() &&
           destination.GetChannelAccess() != ENChannel::Alpha &&
           bump.GetPixelFormat().Channels() == 1 && bump.GetWidth() == source.GetWidth() + 2 &&
           bump.GetHeight() == source.GetHeight() + 2;
}

}  // namespace

CErrorAutoThrow BumpMap2(CStatusControl* status, const CBumpMapEffectSettings& settings,
                         const CRowIteratorBands& source, const CRowIteratorBands& bump,
                         const CRowIteratorBands& third, CRowIteratorBands& destination, int mode,
                         const CRect* area) {
    if (mode != 1 || area) return TolmErrorCode::NotAvailable;
    if (!Fit(source, bump, third, destination)) return TolmErrorCode::UnusableInput;
    const CReliefLighting lighting(settings);
    return LightByHeights(status, lighting, {{bump, kRise}}, destination,
                          [&](int y) { CopyShownRow(source, y, destination, y); });
}
