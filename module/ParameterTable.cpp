#include "module/ParameterTable.h"

#include "host/commands/CCmdHelpers.h"
#include "host/commands/ParameterDefinition.h"
#include "host/settings/CSingletonManager.h"
#include "module/CTolmResourceManager.h"

namespace {

std::int32_t MaximumOf(const SParameterRow& row, CSize canvas, double scale) {
    switch (row.maximum_rule) {
        case EMaximumRule::Fixed:
            break;
        case EMaximumRule::Scaled:
            return static_cast<std::int32_t>(
                std::clamp(row.maximum * scale, double{INT32_MIN}, double{INT32_MAX}));
        case EMaximumRule::CanvasSide:
            return canvas.LargerSide();
    }
    return row.maximum;
}

std::int32_t DefaultOf(const SParameterRow& row, CSize canvas) {
    const auto wanted = static_cast<std::int32_t>(row.default_value);
    if (!row.default_fits_canvas) return wanted;
    const int fitting = canvas.cx >= wanted ? wanted : canvas.cx / 2;
    return fitting > canvas.cy ? canvas.cy / 2 : fitting;
}

CErrorAutoThrow MakeParameter(const SParameterRow& row, CSize canvas, double scale,
                              IParameter** out) {
    const CString label = LoadCurrentString(row.label_id);
    const CString text = LoadCurrentString(row.text_id);
    switch (row.type) {
        case EParameterType::Boolean:
        case EParameterType::Enumeration:
            return DefEnumParam(out, row.index, row.members, row.name, label, text,
                                static_cast<std::int32_t>(row.default_value), row.flags, false,
                                false);
        case EParameterType::Colour:
            return DefColorParam(out, row.index, row.name, label, text,
                                 static_cast<COLORREF>(row.default_value), row.flags, false, false);
        case EParameterType::String:
            return DefStringParam(out, row.index, row.name, label, text, L"", row.flags, false,
                                  false);
        case EParameterType::Integer:
            break;
    }
    return DefIntParam(out, row.index, row.name, label, text, row.minimum,
                       MaximumOf(row, canvas, scale), DefaultOf(row, canvas), row.flags, false,
                       false);
}

// One number of the range-scale settings through an access interface; 0 when it cannot be read.
template <class Access>
std::int32_t SettingOf(IUnknown* item, int index) {
    std::int32_t value = 0;
    if (const auto access = QueryFor<Access>(item)) access->GetValue(index, value).Ignore();
    return value;
}

template <class Predicate>
bool AnyRow(std::span<const SParameterRow> rows, Predicate&& predicate) {
    return std::any_of(rows.begin(), rows.end(), predicate);
}

}  // namespace

double RangeScale() {
    const auto settings = CSingletonManager::Get<IGlobalSettings>();
    const auto item =
        TRef<IUnknown>::Adopt(settings ? settings->GetItem(IGlobalSettings::kRangeItem) : nullptr);
    if (SettingOf<IEnumParameters>(item.Get(), IGlobalSettings::kRangeScaleOn) == 0) return 1.0;
    return 1.0 +
           SettingOf<IIntegerParameters>(item.Get(), IGlobalSettings::kRangeScalePercent) / 100.0;
}

CErrorAutoThrow DefineParameterTable(std::span<const SParameterRow> rows,
                                     ICommandExecutionContext* context,
                                     IParameterRepository* repository) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        const TRef<IParameterRepository> held(repository);
        const CTolmResourceManager resources(L"CmdTexture");
        const bool scaled = AnyRow(rows, [](const SParameterRow& row) {
            return row.maximum_rule == EMaximumRule::Scaled;
        });
        const bool fitted = AnyRow(rows, [](const SParameterRow& row) {
            return row.maximum_rule == EMaximumRule::CanvasSide || row.default_fits_canvas;
        });
        const CSize canvas = fitted ? CCmdHelpers(context).CanvasSize() : CSize{};
        const double scale = scaled ? RangeScale() : 1.0;
        for (const SParameterRow& row : rows) {
            TRef<IParameter> parameter;
            MakeParameter(row, canvas, scale, parameter.Receive()).Ignore();
            if (parameter && !row.member_label_ids.empty()) {
                std::vector<CString> labels;
                for (const int id : row.member_label_ids) labels.push_back(LoadCurrentString(id));
                parameter->SetMemberLabels(std::move(labels));
            }
            if (repository && parameter) repository->Add(parameter.Get(), row.index).Ignore();
        }
        return {};
    });
}
