#include "effects/Tiles.h"

#include "effects/AlphaMerge.h"

CErrorAutoThrow ApplyTiles(CStatusControl* status, CRowIteratorBands& source,
                           CRowIteratorBands& destination, const CTilesSettings& settings) {
    const int modify_mode = source.GetImageModifyMode();
    const CNPixelFormat format = source.GetPixelFormat();
    const bool merge = HasHideableAlpha(format);
    if (merge) HideAlpha(source, format, 0);
    CIoTilesEffect tiles(settings);
    tiles.SetStatusControl(status);
    CErrorAutoThrow error = tiles(CIoData(destination, source));
    if (merge && !error.Failed()) error = MergeAlpha(source, destination, format, modify_mode);
    if (merge) source.SetChannelAccess(ENChannel::All, modify_mode).Ignore();
    return error;
}
