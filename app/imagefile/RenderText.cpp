#include "app/imagefile/RenderText.h"

#include <vips/vips.h>

#include <algorithm>

#include "app/imagefile/VipsSession.h"

namespace imagefile {

CRowIteratorBands RenderText(const std::string& text, int height) {
    StartVips();
    VipsImage* drawn = nullptr;
    const std::string font = "Sans " + std::to_string(height);
    char* escaped = g_markup_escape_text(text.c_str(), -1);
    const int failed =
        vips_text(&drawn, escaped, "font", font.c_str(), "dpi", 72, static_cast<void*>(nullptr));
    g_free(escaped);
    CRowIteratorBands coverage;
    if (failed) {
        TakeVipsError();
        return coverage;
    }
    const TVips<VipsImage> held(drawn);
    std::size_t bytes = 0;
    void* pixels = vips_image_write_to_memory(drawn, &bytes);
    if (!pixels) return coverage;
    coverage
        .Attach(pixels, drawn->Xsize, drawn->Xsize, drawn->Ysize, ENPixelFormat::Grey8,
                [pixels] { g_free(pixels); })
        .ThrowIfFailed();
    return coverage;
}

}  // namespace imagefile
