#include "effects/AlphaMerge.h"

#include "host/graphics/ImageHelpers.h"

bool HasHideableAlpha(CNPixelFormat format) {
    return format == ENPixelFormat::ColourAlpha8 || format == ENPixelFormat::GreyAlpha8;
}

void HideAlpha(CRowIteratorBands& image, CNPixelFormat format, int modify_mode) {
    const bool colour = format == ENPixelFormat::ColourAlpha8;
    image.SetChannelAccess(colour ? ENChannel::Colour : ENChannel::Grey, modify_mode).Ignore();
}

CErrorAutoThrow MergeAlpha(CRowIteratorBands& source, CRowIteratorBands& destination,
                           CNPixelFormat format, int modify_mode) {
    source.SetChannelAccess(ENChannel::Alpha, source.GetImageModifyMode()).Ignore();
    CRowIteratorBands merged;
    CErrorAutoThrow error =
        AddAlphaChannel(nullptr, destination, merged, format, source, nullptr, true, nullptr);
    destination.Destroy();
    source.SetChannelAccess(ENChannel::All, modify_mode).Ignore();
    if (error.Failed()) return error;
    destination.Consume(merged);
    destination.SetChannelAccess(ENChannel::All, modify_mode).Ignore();
    return error;
}
