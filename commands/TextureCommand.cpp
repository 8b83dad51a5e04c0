#include "commands/TextureCommand.h"

#include <algorithm>

#include "host/commands/CCmdHelpers.h"

namespace {

template <class Access, class Value>
Value Read(IParameterRepository* repository, int index, Value value) {
    if (const auto access = QueryFor<Access>(repository)) access->GetValue(index, value).Ignore();
    return value;
}

}  // namespace

std::array<bool, 13> FlagsOf(const SCommandKind& kind) {
    std::array<bool, 13> flags{};
    for (const int position : kind.flags) flags[static_cast<std::size_t>(position - 1)] = true;
    return flags;
}

CErrorAutoThrow RunDialog(CPreviewChild& dialog) {
    {
        const CTolmResourceManager resources(L"CmdTexture");
        dialog.LoadTemplate().ThrowIfFailed();
    }
    if (dialog.DoModal() == IDCANCEL) return TolmErrorCode::Cancelled;
    return {};
}

int CParameterReader::Integer(int index, int otherwise) const {
    return Read<IIntegerParameters>(repository_, index, static_cast<std::int32_t>(otherwise));
}
bool CParameterReader::Boolean(int index, bool otherwise) const {
    return Read<IBooleanParameters>(repository_, index, otherwise);
}
int CParameterReader::Member(int index, int otherwise) const {
    return Read<IEnumParameters>(repository_, index, static_cast<std::int32_t>(otherwise));
}
COLORREF CParameterReader::Colour(int index, COLORREF otherwise) const {
    return Read<IColorParameters>(repository_, index, otherwise);
}
CString CParameterReader::Text(int index) const {
    return Read<IStringParameters>(repository_, index, CString());
}

void ReadRelief(const CParameterReader& parameters, const SReliefIndices& at,
                SReliefSettings& settings) {
    settings.angle = parameters.Integer(at.angle, settings.angle);
    settings.elevation = parameters.Integer(at.elevation, settings.elevation);
    settings.color = parameters.Colour(at.color, settings.color);
    settings.intensity = parameters.Integer(at.intensity, settings.intensity);
    settings.ambience = parameters.Integer(at.ambience, settings.ambience);
    settings.depth = parameters.Integer(at.depth, settings.depth);
    settings.shininess = parameters.Integer(at.shininess, settings.shininess);
    settings.smoothness = parameters.Integer(at.smoothness, settings.smoothness);
}

SColorSpecRGB ColorSpec(ICommandExecutionContext* context) {
    TRef<INGLGraphic> graphic;
    CCmdHelpers(context).GetGraphic(graphic).Ignore();
    return graphic ? graphic->GetColorSpec() : SColorSpecRGB();
}

int CanvasHeight(ICommandExecutionContext* context, const CRowIteratorBands& source) {
    TRef<INGLGraphic> graphic;
    CCmdHelpers(context).GetGraphic(graphic).Ignore();
    return graphic ? graphic->GetHeight() : source.GetRect().bottom;
}

int DensityFor(ICommandExecutionContext* context, const CRowIteratorBands& source, int density) {
    TRef<INGLGraphic> graphic;
    CCmdHelpers(context).GetGraphic(graphic).Ignore();
    if (!graphic) return density;
    const CSize canvas{graphic->GetWidth(), graphic->GetHeight()};
    if (canvas == CSize{source.GetWidth(), source.GetHeight()}) return density;
    const double share = static_cast<double>(source.GetWidth()) / canvas.cx;
    return std::max(static_cast<int>(density * share), 1);
}
