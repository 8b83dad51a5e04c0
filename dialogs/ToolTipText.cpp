#include "dialogs/ToolTipText.h"

#include <algorithm>
#include <iterator>

#include "host/dialogs/ParameterToolTips.h"

namespace {

constexpr int kWrapColumn = 50;
constexpr int kLines = 5;

// "%s [%d - %d]"
CString RangeTip(const IParameter* parameter, std::int32_t minimum, std::int32_t maximum) {
    return (parameter ? parameter->Label() : CString()) + L" [" + std::to_wstring(minimum) +
           L" - " + std::to_wstring(maximum) + L"]";
}

}  // namespace

CString TipOf(const SControlRow& row, IParameterRepository* repository, std::int32_t minimum,
              std::int32_t maximum) {
    switch (row.tip) {
        case ETip::Range:
            return RangeTip(repository->At(row.parameter), minimum, maximum);
        case ETip::Integer:
            return CIntegerParameterToolTip(repository, kWrapColumn, kLines).Text(row.parameter);
        case ETip::Real:
            return CRealParameterToolTip(repository, kWrapColumn, kLines).Text(row.parameter);
        case ETip::Boolean:
            return CBooleanParameterToolTip(repository, kWrapColumn, kLines).Text(row.parameter);
        case ETip::Colour:
            return CColorParameterToolTip(repository, kWrapColumn, kLines).Text(row.parameter);
        case ETip::None:
            break;
    }
    return {};
}

void CopyToolTip(const CString& text, TOOLTIPTEXTW& info) {
    const std::size_t length = std::min(text.Text().size(), std::size(info.text) - 1);
    std::copy_n(text.GetString(), length, info.text);
    info.text[length] = L'\0';
}
