#include "commands/ResourceImages.h"

#include "effects/AlphaMerge.h"
#include "host/commands/CCmdHelpers.h"
#include "host/graphics/ImageHelpers.h"

namespace {

constexpr int kPatternType = 10;
constexpr int kTextureType = 44;
constexpr CColorRef kWhite{0xFFFFFF};

CRowIteratorBands Load(ICommandExecutionContext* context, int type, const CString& name) {
    TRef<IResourceLibrary> library;
    CRowIteratorBands loaded;
    if (CCmdHelpers(context).GetResourceLibrary(library).Failed()) return loaded;
    library->LoadImage(type, name, loaded).Ignore();
    return loaded;
}

CRowIteratorBands OnWhite(const CRowIteratorBands& image) {
    CRowIteratorBands flat;
    DeleteAlphaChannel(image, flat, GetMask64KLUT(), kWhite).Ignore();
    return flat;
}

}  // namespace

CRowIteratorBands LoadPatternImage(ICommandExecutionContext* context, const CString& name) {
    const CRowIteratorBands loaded = Load(context, kPatternType, name);
    return HasHideableAlpha(loaded.GetPixelFormat()) ? OnWhite(loaded) : loaded;
}

CRowIteratorBands LoadTextureImage(ICommandExecutionContext* context, const CString& name,
                                   const SColorSpecRGB& color_spec) {
    CRowIteratorBands loaded = Load(context, kTextureType, name);
    if (!loaded.IsAttached()) return loaded;
    const bool alpha = loaded.GetPixelFormat().IsAlphaChannelPresent();
    CRowIteratorBands grey;
    GreyScaleDIB(nullptr, alpha ? OnWhite(loaded) : loaded, grey, color_spec).Ignore();
    return grey;
}
