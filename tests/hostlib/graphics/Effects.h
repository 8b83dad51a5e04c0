#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/graphics/BumpMap2.h"
#include "host/graphics/CIoDeformation.h"
#include "host/graphics/CIoSculptureEffect.h"
#include "host/graphics/CIoTilesEffect.h"
#include "host/graphics/ImageHelpers.h"
#include "support/Pictures.h"

// The host library's effects by name, at modest and at extreme settings, for tests of what holds
// for all of them.
namespace effects {

using pictures::Noise;

struct SEffect {
    std::string name;
    std::function<CErrorAutoThrow(CStatusControl*, const CRowIteratorBands& source,
                                  CRowIteratorBands& destination)>
        apply;
};

inline SReliefSettings Relief(int angle, int elevation, int depth, int shininess, int smoothness) {
    SReliefSettings settings;
    settings.angle = angle;
    settings.elevation = elevation;
    settings.depth = depth;
    settings.shininess = shininess;
    settings.smoothness = smoothness;
    settings.intensity = depth;
    settings.ambience = smoothness - shininess;
    settings.color = 0x80FF40U + static_cast<COLORREF>(angle);
    return settings;
}

inline SEffect Tiles(const std::string& name, const SReliefSettings& relief, int shape, int size,
                     int border, int angularity) {
    CTilesSettings settings;
    static_cast<SReliefSettings&>(settings) = relief;
    settings.tileShape = shape;
    settings.tileSize = size;
    settings.borderSize = border;
    settings.tileAngularity = angularity;
    return {name, [=](CStatusControl* status, const auto& source, auto& destination) {
                CIoTilesEffect effect(settings);
                effect.SetStatusControl(status);
                return effect(CIoData(destination, source));
            }};
}

// Seeds the generator before it runs, as its users do.
inline SEffect Mosaic(const std::string& name, const std::function<bool(CIoDeformation&)>& choose,
                      int resample = 2, int edge = 1) {
    return {name, [=](CStatusControl* status, const auto& source, auto& destination) {
                CIoDeformation mosaic;
                mosaic.SetStatusControl(status);
                mosaic.SetResampleMode(resample);
                mosaic.SetEdgeMode(edge);
                EXPECT_TRUE(choose(mosaic));
                CRuntimeRandom::OfThisThread().Seed(1);
                return mosaic(CIoData(destination, source));
            }};
}

inline SEffect Sculpture(const std::string& name, const SReliefSettings& relief, int size,
                         const CRowIteratorBands& pattern, bool masked) {
    CSculptureSettings settings;
    static_cast<SReliefSettings&>(settings) = relief;
    settings.size = size;
    return {name, [=](CStatusControl* status, const auto& source, auto& destination) {
                CIoSculptureEffect effect;
                effect.SetSourceDib(pattern, false);
                effect.SetBumpDib(source, false);
                if (masked) {
                    effect.SetMaskDib(
                        Noise(ENPixelFormat::Grey8, source.GetWidth(), source.GetHeight(), 9),
                        false);
                }
                effect.UpdateSettings(settings);
                return effect.ApplyEffect(status, destination, {});
            }};
}

inline SEffect Texture(const std::string& name, const SReliefSettings& relief,
                       ENPixelFormat depth) {
    CBumpMapEffectSettings settings;
    static_cast<SReliefSettings&>(settings) = relief;
    return {name, [=](CStatusControl* status, const auto& source, auto& destination) {
                const CRowIteratorBands bump =
                    Noise(depth, source.GetWidth() + 2, source.GetHeight() + 2, 4);
                destination.Copy(source, 0).ThrowIfFailed();
                return BumpMap2(status, settings, source, pictures::Tight(bump), {}, destination, 1,
                                nullptr);
            }};
}

inline std::vector<SEffect> All() {
    const CRowIteratorBands pattern = Noise(ENPixelFormat::Colour8, 13, 9, 3);
    const CRowIteratorBands dot = Noise(ENPixelFormat::GreyAlpha16, 1, 1, 3);
    const SReliefSettings most = Relief(359, 1, 100, 100, 100), least = Relief(0, 90, 1, 0, 0);
    return {
        Tiles("hexagons", {}, 2, 15, 1, 75),
        Tiles("triangles", most, 0, 8, 10, 0),
        Tiles("squares", least, 1, 1024, 256, 100),
        Mosaic("stones", [](auto& to) { return to.MosaicAdvanced(7, 5, 2, 50, 70); }),
        Mosaic("many stones", [](auto& to) { return to.MosaicAdvanced(32767, 100, 10, 100, 100); }),
        Mosaic("stones without grout", [](auto& to) { return to.MosaicAdvanced(25, 1, 0, 0, 0); }),
        Mosaic("glass", [](auto& to) { return to.Glasses(7, 5, 2, 50, 0, 50); }),
        Mosaic(
            "much glass", [](auto& to) { return to.Glasses(25, 100, 10, 100, 100, 100); }, 1, 0),
        Mosaic(
            "plain glass", [](auto& to) { return to.Glasses(1, 1, 0, 0, 100, 100); }, 0),
        Sculpture("sculpture", {}, 100, pattern, false),
        Sculpture("large sculpture", most, 1000, pattern, true),
        Sculpture("small sculpture", least, 1, dot, false),
        Sculpture("plain sculpture", {}, 100, {}, true),
        Texture("texture", {}, ENPixelFormat::Grey8),
        Texture("deep texture", most, ENPixelFormat::Grey16),
    };
}

inline CRowIteratorBands Apply(const SEffect& effect, const CRowIteratorBands& source) {
    CRowIteratorBands destination;
    effect.apply(nullptr, source, destination).ThrowIfFailed();
    return destination;
}

}  // namespace effects
