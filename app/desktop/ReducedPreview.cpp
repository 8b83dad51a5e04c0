#include "app/desktop/ReducedPreview.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "hostlib/commands/CDocument.h"

namespace {

// The parameters that are measured in pixels, directly or in shares of one. Everything else
// (counts, angles, per cent of a tile or of the light) is free of the picture's size.
constexpr std::array<const wchar_t*, 10> kLengths = {
    L"Width",      L"WeaveWidth", L"GapWidth",     L"TileSize", L"BorderSize",
    L"GroutWidth", L"Length",     L"FurrowLength", L"Blur",     L"Size"};

bool IsLength(const IParameter& parameter) {
    return parameter.Type() == EParameterType::Integer &&
           std::any_of(kLengths.begin(), kLengths.end(),
                       [&](const wchar_t* name) { return parameter.Name() == CString(name); });
}

}  // namespace

void ReduceSnapshot(SPreviewSnapshot& snapshot, int level, const CRowIteratorBands& source,
                    const CRowIterator& selection) {
    const double scale = std::ldexp(1.0, -level);
    IParameterRepository* repository = snapshot.command->BoundRepository();
    for (int i = 0; repository && i < repository->Count(); ++i) {
        IParameter* parameter = repository->At(i);
        if (!parameter || !IsLength(*parameter)) continue;
        const auto reduced = std::llround(static_cast<double>(parameter->Number()) * scale);
        parameter->SetNumber(std::clamp<std::int64_t>(
            reduced, parameter->Minimum(),
            std::max(parameter->Number(), std::int64_t{parameter->Minimum()})));
    }
    const auto reduced = [&](int side) { return (side + (1 << level) - 1) >> level; };
    INGLGraphic* graphic = snapshot.context->Graphic();
    const TRef<CDocument> document(
        new CDocument({reduced(graphic->GetWidth()), reduced(graphic->GetHeight())}));
    document->SetActiveImage(source);
    document->SetSelection(selection);
    snapshot.context =
        new CExecutionContext(document, snapshot.context->ResourceLibrary(), nullptr);
    snapshot.source = source;
    snapshot.selection = selection;
}
