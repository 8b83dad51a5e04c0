#include "FuzzInput.h"
#include "app/imagefile/CPictureFiles.h"
#include "hostlib/parameters/ParameterValues.h"
#include "job/CFileResourceLibrary.h"

namespace {

CRowIteratorBands Picture(fuzz::CNumbers& numbers, CSize size) {
    constexpr ENPixelFormat kFormats[] = {ENPixelFormat::Grey8,    ENPixelFormat::GreyAlpha8,
                                          ENPixelFormat::Colour8,  ENPixelFormat::ColourAlpha8,
                                          ENPixelFormat::Grey16,   ENPixelFormat::GreyAlpha16,
                                          ENPixelFormat::Colour16, ENPixelFormat::ColourAlpha16};
    CRowIteratorBands picture;
    picture.Create(size.cx, size.cy, kFormats[numbers.Byte() % std::size(kFormats)])
        .ThrowIfFailed();
    std::uint32_t state = numbers.Byte();
    for (int y = 0; y < size.cy; ++y) {
        auto* row = picture.Row<std::uint8_t>(y);
        for (int x = 0; x < size.cx * picture.GetPixelFormat().PixelBytes(); ++x) {
            state = state * 1664525 + 1013904223;
            row[x] = static_cast<std::uint8_t>(state >> 24);
        }
    }
    return picture;
}

}  // namespace

// Effect, sizes, layout, place and every parameter from the input. Whatever it does, the result has
// the size and the layout of the source, or there is an error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::CNumbers numbers(data, size);
    const CSize sides = {static_cast<int>(numbers.Between(1, 96)),
                         static_cast<int>(numbers.Between(1, 96))};
    const CSize canvas = {static_cast<int>(numbers.Between(1, 400)),
                          static_cast<int>(numbers.Between(1, 400))};
    CRowIteratorBands picture = Picture(numbers, sides);
    picture.SetOrigin({static_cast<int>(numbers.Between(-200, 400)),
                       static_cast<int>(numbers.Between(-200, 400))});
    // Small ones: an installation's at their largest size take a second each.
    static const TRef<CFileResourceLibrary> library(
        new CFileResourceLibrary({FUZZ_RESOURCES}, imagefile::MakePictureFiles()));
    const TRef<CDocument> document(new CDocument(canvas));
    const TRef<CExecutionContext> context(new CExecutionContext(document, library, nullptr));
    const TRef<CCmdEffect> command = fuzz::Command(numbers, context.Get());
    for (IParameter* parameter : parameters::All(*command->BoundRepository())) {
        if (parameter->Type() == EParameterType::String) continue;
        parameter->SetNumber(parameter->Type() == EParameterType::Integer
                                 ? numbers.Between(parameter->Minimum(), parameter->Maximum())
                                 : numbers.Byte());
    }
    document->SetActiveImage(picture);
    if (RunCommand(*command, context.Get()).Failed()) return 0;
    const CRowIteratorBands result = document->GetActiveImage();
    const bool is_alike = result.GetWidth() == sides.cx && result.GetHeight() == sides.cy &&
                          result.GetPixelFormat() == picture.GetPixelFormat();
    if (!is_alike) std::abort();
    return 0;
}
