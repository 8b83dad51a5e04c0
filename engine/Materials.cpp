#include "engine/Materials.h"

#include <array>

#include "engine/Pipelines.h"
#include "host/graphics/PixelMath.h"

namespace {

constexpr int kBorders = 4;
constexpr int kMostEntries = 15;

struct SBounds {
    int low, high;
    constexpr bool Hold(int value) const { return value >= low && value <= high; }
};
constexpr SBounds kByte = {0, 255};

struct SMaterial {
    CTransformParamList (*define)();
    PipelineRunner* run;
    int borders[kBorders];  // left, right, top, bottom in thousandths
    bool starts_as_copy;    // the destination is made a copy of the source first
    bool destroys;          // the destination, when the run fails
    bool refuses;           // values out of bounds, and a missing source, are error 101
    SBounds bounds[kMostEntries - kBorders];  // of the entries after the borders, in their order
};

// Pipeline, borders, and bounds of the entries. Borders beyond 0 and 1000 mean the whole image;
// 1 and 999 leave a margin that the strokes' points keep out of.
constexpr SMaterial kSandstone = {DefineTransfo1T2,
                                  RunTransfo1T2,
                                  {0, 1000, 0, 1000},
                                  true,
                                  false,
                                  false,
                                  {{0, 100}, {1, 256}, {10, 20}, {0, 359}, kByte, kByte, kByte}};
constexpr SMaterial kPolishedStone = {
    DefineTransfo1T5,
    RunTransfo1T5,
    {0, 1000, 0, 1000},
    true,
    false,
    false,
    {{0, 100}, {1, 256}, {10, 20}, {0, 359}, kByte, kByte, kByte}};
constexpr SMaterial kSoftPlastic = {DefineTransfo1T4,
                                    RunTransfo1T4,
                                    {0, 1000, 0, 1000},
                                    true,
                                    false,
                                    true,
                                    {{0, 100}, {1, 100}, {1, 128}, {0, 359}, kByte, kByte, kByte}};
constexpr SMaterial kRoughLeather = {DefineTransfo1T7,
                                     RunTransfo1T7,
                                     {0, 1000, 0, 1000},
                                     true,
                                     true,
                                     false,
                                     {{-255, 255},
                                      {0, 100},
                                      kByte,
                                      kByte,
                                      kByte,
                                      {0, 100},
                                      {0, 100},
                                      {0, 359},
                                      kByte,
                                      kByte,
                                      kByte}};
constexpr SMaterial kFineLeather = {
    DefineTransfo1T9,
    RunTransfo1T9,
    {-10, 1010, -10, 1010},
    false,
    false,
    false,
    {{0, 100}, {1, 2000}, {1, 20}, {0, 255}, {0, 359}, kByte, kByte, kByte}};
constexpr SMaterial kFur = {DefineTransfo2T5,
                            RunTransfo2T5,
                            {1, 999, 1, 999},
                            false,
                            false,
                            false,
                            {{0, 100}, {1, 200}, {1, 100}, {0, 255}}};
constexpr SMaterial kStrawWall = {
    DefineTransfo2T8,
    RunTransfo2T8,
    {1, 999, 1, 999},
    false,
    false,
    true,
    {{0, 100}, {1, 100}, {1, 20}, {1, 40}, {0, 255}, {0, 359}, kByte, kByte, kByte}};

// Runs a material with the values of the entries after the borders, in their order.
template <std::size_t kCount>
CErrorAutoThrow Apply(const SMaterial& material, CStatusControl& status, CRowIteratorBands& source,
                      CRowIteratorBands& destination, const std::array<int, kCount>& values) {
    if (material.refuses) {
        if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
        for (std::size_t i = 0; i < kCount; ++i) {
            if (!material.bounds[i].Hold(values[i])) return TolmErrorCode::UnusableInput;
        }
    }
    if (material.starts_as_copy) {
        CErrorAutoThrow copied = destination.Copy(source, 0);
        if (copied.Failed()) return copied;
    }
    CTransformParamList list = material.define();
    for (int i = 0; i < kBorders; ++i) list[i].value = material.borders[i];
    for (std::size_t i = 0; i < kCount; ++i) {
        list[kBorders + static_cast<int>(i)].value =
            pixel::Clamp(values[i], material.bounds[i].low, material.bounds[i].high);
    }
    if (material.refuses) status.SetNumberOfSteps(3);
    CErrorAutoThrow result = material.run(source, destination, list, status);
    if (result.Failed() && material.destroys) destination.Destroy();
    return result;
}

}  // namespace

CErrorAutoThrow ApplySandstone(CStatusControl& status, CRowIteratorBands& source,
                               CRowIteratorBands& destination, int angle, int blur, int detail,
                               int luminance, COLORREF color) {
    const CColorRef light{color};
    return Apply<7>(kSandstone, status, source, destination,
                    {blur, detail, luminance, angle, light.Red(), light.Green(), light.Blue()});
}

CErrorAutoThrow ApplyPolishedStone(CStatusControl& status, CRowIteratorBands& source,
                                   CRowIteratorBands& destination, int blur, int detail,
                                   int polishing, int angle, COLORREF color) {
    const CColorRef light{color};
    return Apply<7>(kPolishedStone, status, source, destination,
                    {blur, detail, polishing, angle, light.Red(), light.Green(), light.Blue()});
}

CErrorAutoThrow ApplySoftPlastic(CStatusControl& status, CRowIteratorBands& source,
                                 CRowIteratorBands& destination, int blur, int detail, int density,
                                 int angle, COLORREF color) {
    const CColorRef light{color};
    return Apply<7>(kSoftPlastic, status, source, destination,
                    {blur, detail, density, angle, light.Red(), light.Green(), light.Blue()});
}

CErrorAutoThrow ApplyRoughLeather(CStatusControl& status, CRowIteratorBands& source,
                                  CRowIteratorBands& destination, int angle, int blur,
                                  int sharpness, int contrast, int luminance, COLORREF lightColor,
                                  COLORREF leatherColor) {
    const CColorRef light{lightColor};
    const CColorRef leather{leatherColor};
    return Apply<11>(kRoughLeather, status, source, destination,
                     {luminance, contrast, leather.Red(), leather.Green(), leather.Blue(), blur,
                      sharpness, angle, light.Red(), light.Green(), light.Blue()});
}

CErrorAutoThrow ApplyFineLeather(CStatusControl& status, CRowIteratorBands& source,
                                 CRowIteratorBands& destination, int angle, int blur,
                                 int furrowCount, int furrowLength, int transparency,
                                 COLORREF color) {
    const CColorRef light{color};
    return Apply<8>(kFineLeather, status, source, destination,
                    {blur, furrowCount, furrowLength, transparency, angle, light.Red(),
                     light.Green(), light.Blue()});
}

CErrorAutoThrow ApplyFur(CStatusControl& status, CRowIteratorBands& source,
                         CRowIteratorBands& destination, int blur, int density, int length,
                         int transparency) {
    return Apply<4>(kFur, status, source, destination, {blur, density, length, transparency});
}

TolmErrorCode ApplyStrawWall(CStatusControl& status, CRowIteratorBands& source,
                             CRowIteratorBands& destination, int blur, int length, int width,
                             int density, int angle, int transparency, COLORREF color) {
    const CColorRef light{color};
    return Apply<9>(kStrawWall, status, source, destination,
                    {blur, density, length, width, transparency, angle, light.Red(), light.Green(),
                     light.Blue()})
        .Code();
}
