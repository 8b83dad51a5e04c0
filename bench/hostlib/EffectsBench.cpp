#include <tbb/global_control.h>

#include <functional>
#include <string>

#include "host/graphics/BumpMap2.h"
#include "host/graphics/CIoDeformation.h"
#include "host/graphics/CIoSculptureEffect.h"
#include "host/graphics/CIoTilesEffect.h"
#include "host/graphics/ImageHelpers.h"
#include "support/Bench.h"

// The effects of the host library at their commands' defaults, and their slowest settings.
namespace {

using Effect = std::function<void(const CRowIteratorBands&, CRowIteratorBands&)>;

Effect Tiles(int shape, int smoothness) {
    return [=](const CRowIteratorBands& source, CRowIteratorBands& destination) {
        CTilesSettings settings;
        settings.tileShape = shape;
        settings.smoothness = smoothness;
        CIoTilesEffect effect(settings);
        effect(destination, source).ThrowIfFailed();
    };
}

Effect Antique(int tiles) {
    return [=](const CRowIteratorBands& source, CRowIteratorBands& destination) {
        CIoDeformation mosaic;
        mosaic.MosaicAdvanced(tiles, tiles, 2, 50, 70);
        mosaic(destination, source).ThrowIfFailed();
    };
}

Effect Glass(int tiles, int curvature) {
    return [=](const CRowIteratorBands& source, CRowIteratorBands& destination) {
        CIoDeformation mosaic;
        mosaic.SetResampleMode(2);
        mosaic.SetEdgeMode(1);
        mosaic.Glasses(tiles, tiles, 2, 50, 0, curvature);
        mosaic(destination, source).ThrowIfFailed();
    };
}

Effect Sculpture(int smoothness) {
    const CRowIteratorBands pattern = bench::Photo(ENPixelFormat::Colour8, 512, 512);
    return [=](const CRowIteratorBands& source, CRowIteratorBands& destination) {
        CSculptureSettings settings;
        settings.smoothness = smoothness;
        CIoSculptureEffect effect;
        effect.SetSourceDib(pattern, false);
        effect.SetBumpDib(source, false);
        effect.UpdateSettings(settings);
        effect.ApplyEffect(nullptr, destination, {}).ThrowIfFailed();
    };
}

// The whole of a texture's way: scaled, tiled into the relief, lit.
Effect Texture(int size) {
    const CRowIteratorBands texture = bench::Photo(ENPixelFormat::Grey8, 512, 512);
    return [=](const CRowIteratorBands& source, CRowIteratorBands& destination) {
        CRowIteratorBands scaled, bump;
        const int side = 512 * size / 100;
        Resample(nullptr, texture, scaled, side, side, true, false).ThrowIfFailed();
        bump.CreateGreyscale(source.GetWidth() + 2, source.GetHeight() + 2, {}).ThrowIfFailed();
        RowIterator_Tile(bump, scaled).ThrowIfFailed();
        BumpMap2(nullptr, {}, source, bump, {}, destination, 1, nullptr).ThrowIfFailed();
    };
}

void Register(const std::string& name, const Effect& effect) {
    const struct {
        const char* name;
        ENPixelFormat format;
    } formats[] = {{"colour-8", ENPixelFormat::Colour8}, {"colour-16", ENPixelFormat::Colour16}};
    for (const auto& format : formats) {
        for (const int threads : {1, 2}) {
            const std::string title =
                name + "/" + format.name + "/threads:" + std::to_string(threads);
            const auto run = [=, code = format.format](benchmark::State& state) {
                const CRowIteratorBands source = bench::Photo(code);
                CRowIteratorBands destination;
                destination.Copy(source, 0).ThrowIfFailed();
                const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                                static_cast<std::size_t>(threads));
                bench::AgainstCopy(state, source, [&] { effect(source, destination); });
            };
            benchmark::RegisterBenchmark(title.c_str(), run)
                ->UseManualTime()
                ->Iterations(7)
                ->Unit(benchmark::kMillisecond);
        }
    }
}

const bool registered = [] {
    Register("tiles", Tiles(2, 25));
    Register("tiles-triangles", Tiles(0, 100));
    Register("mosaic-antique", Antique(50));
    Register("mosaic-antique-100", Antique(100));
    Register("mosaic-glass", Glass(50, 50));
    Register("mosaic-glass-100", Glass(100, 100));
    Register("sculpture", Sculpture(0));
    Register("sculpture-smooth", Sculpture(50));
    Register("texture", Texture(100));
    Register("texture-400", Texture(400));
    return true;
}();

}  // namespace
