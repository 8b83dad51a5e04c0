#include "effects/Sculpture.h"

#include "effects/AlphaMerge.h"
#include "host/commands/CCmdHelpers.h"
#include "host/graphics/ImageHelpers.h"

namespace {
constexpr int kPatternType = 10;
constexpr CColorRef kWhite{0xFFFFFF};
}  // namespace

CRowIteratorBands LoadPatternImage(ICommandExecutionContext* context, const CString& name) {
    TRef<IResourceLibrary> library;
    CRowIteratorBands loaded;
    if (CCmdHelpers(context).GetResourceLibrary(library).Failed()) return loaded;
    library->LoadImage(kPatternType, name, loaded).Ignore();
    if (!HasHideableAlpha(loaded.GetPixelFormat())) return loaded;
    CRowIteratorBands flat;
    DeleteAlphaChannel(loaded, flat, GetMask64KLUT(), kWhite).Ignore();
    return flat;
}

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
