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
constexpr SBounds kBlur = {0, 100};
constexpr SBounds kAngle = {0, 359};
constexpr SBounds kByte = {0, 255};

// Left, right, top, bottom in thousandths; the transforms pull them into 0 to 1000.
struct SBorders {
    int value[kBorders];
};
constexpr SBorders kWholeImage = {{0, 1000, 0, 1000}};
constexpr SBorders kBeyondImage = {{-10, 1010, -10, 1010}};
constexpr SBorders kInsideImage = {{1, 999, 1, 999}};  // the strokes keep off the edges

enum ERules : unsigned {
    kPlain = 0,
    kStartsAsCopy = 1,     // the destination is made a copy of the source first
    kRefuses = 2,          // a missing source or a value out of bounds is error 101
    kDestroysOnError = 4,  // the destination of a run that fails
    kBlursFirst = 8,       // the first stage writes the whole destination
};

struct SMaterial {
    CTransformParamList (*define)();
    PipelineRunner* run;
    SBorders borders;
    unsigned rules;
    SBounds bounds[kMostEntries - kBorders];  // of the entries after the borders, in their order
};

// clang-format off
constexpr SMaterial kSandstone = {
    DefineTransfo1T2, RunTransfo1T2, kWholeImage, kStartsAsCopy | kBlursFirst,
    {kBlur, {1, 256} /* detail */, {10, 20} /* luminance */, kAngle, kByte, kByte, kByte}};
constexpr SMaterial kPolishedStone = {
    DefineTransfo1T5, RunTransfo1T5, kWholeImage, kStartsAsCopy | kBlursFirst,
    {kBlur, {1, 256} /* detail */, {10, 20} /* polishing */, kAngle, kByte, kByte, kByte}};
constexpr SMaterial kSoftPlastic = {
    DefineTransfo1T4, RunTransfo1T4, kWholeImage, kStartsAsCopy | kBlursFirst | kRefuses,
    {kBlur, {1, 100} /* detail */, {1, 128} /* density */, kAngle, kByte, kByte, kByte}};
constexpr SMaterial kRoughLeather = {
    DefineTransfo1T7, RunTransfo1T7, kWholeImage, kStartsAsCopy | kDestroysOnError,
    {{-255, 255} /* luminance */, {0, 100} /* contrast */, kByte, kByte, kByte, kBlur,
     {0, 100} /* sharpness */, kAngle, kByte, kByte, kByte}};
constexpr SMaterial kFineLeather = {
    DefineTransfo1T9, RunTransfo1T9, kBeyondImage, kPlain,
    {kBlur, {1, 2000} /* furrow count */, {1, 20} /* length */, kByte, kAngle, kByte, kByte, kByte}};
constexpr SMaterial kFur = {
    DefineTransfo2T5, RunTransfo2T5, kInsideImage, kPlain,
    {kBlur, {1, 200} /* density */, {1, 100} /* length */, kByte}};
constexpr SMaterial kStrawWall = {
    DefineTransfo2T8, RunTransfo2T8, kInsideImage, kRefuses,
    {kBlur, {1, 100} /* density */, {1, 20} /* length */, {1, 40} /* width */, kByte, kAngle,
     kByte, kByte, kByte}};
// clang-format on

// Runs a material with the values of the entries after the borders, in their order.
template <std::size_t kCount>
CErrorAutoThrow Apply(const SMaterial& material, CStatusControl& status, CRowIteratorBands& source,
                      CRowIteratorBands& destination, const std::array<int, kCount>& values) {
    if (material.rules & kRefuses) {
        if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
        for (std::size_t i = 0; i < kCount; ++i) {
            if (!material.bounds[i].Hold(values[i])) return TolmErrorCode::UnusableInput;
        }
    }
    if (material.rules & kStartsAsCopy) {
        // A first stage that writes the whole destination leaves nothing of a copy, but plainly one
        // is made.
        const bool overwritten = (material.rules & kBlursFirst) && status.Workers();
        CErrorAutoThrow made =
            overwritten ? destination.Match(source) : destination.Copy(source, 0);
        if (made.Failed()) return made;
    }
    CTransformParamList list = material.define();
    for (int i = 0; i < kBorders; ++i) list[i].value = material.borders.value[i];
    for (std::size_t i = 0; i < kCount; ++i) {
        list[kBorders + static_cast<int>(i)].value =
            pixel::Clamp(values[i], material.bounds[i].low, material.bounds[i].high);
    }
    if (material.rules & kRefuses) status.SetNumberOfSteps(3);
    CErrorAutoThrow result = material.run(source, destination, list, status);
    if (result.Failed() && (material.rules & kDestroysOnError)) destination.Destroy();
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
