#include "effects/Sculpture.h"

CErrorAutoThrow ApplySculpture(CStatusControl* status, const CRowIteratorBands& source,
                               CRowIteratorBands& destination, const CRowIterator* mask,
                               const CRowIteratorBands& pattern, const CSculptureSettings& settings,
                               const SColorSpecRGB& color_spec) {
    CIoSculptureEffect sculpture;
    sculpture.SetSourceDib(pattern, false);
    sculpture.SetBumpDib(source, false);
    sculpture.SetMaskDib(mask ? *mask : CRowIterator(), false);
    sculpture.UpdateSettings(settings);
    return sculpture.ApplyEffect(status, destination, color_spec);
}
