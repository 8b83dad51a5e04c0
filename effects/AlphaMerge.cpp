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
                           CNPixelFormat format) {
    const int source_mode = source.GetImageModifyMode();
    const int destination_mode = destination.GetImageModifyMode();
    source.SetChannelAccess(ENChannel::Alpha, source_mode).Ignore();
    CRowIteratorBands merged;
    CErrorAutoThrow error =
        AddAlphaChannel(nullptr, destination, merged, format, source, nullptr, true, nullptr);
    destination.Destroy();
    source.SetChannelAccess(ENChannel::All, source_mode).Ignore();
    if (error.Failed()) return error;
    destination.Consume(merged);
    destination.SetChannelAccess(ENChannel::All, destination_mode).Ignore();
    return error;
}
