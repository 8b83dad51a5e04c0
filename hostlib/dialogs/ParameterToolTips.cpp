#include "host/dialogs/ParameterToolTips.h"

#include <fmt/xchar.h>

#include "host/graphics/ColorRef.h"

CParameterToolTip::CParameterToolTip(IParameterRepository* repository, int /*wrap_column*/,
                                     int /*lines*/, EParameterType type)
    : repository_(repository), type_(type) {}

CString CParameterToolTip::Text(int index) const {
    const IParameter* parameter = repository_ ? repository_->At(index) : nullptr;
    if (!parameter || parameter->Type() != type_) return {};
    const std::wstring& label = parameter->Label().Text();
    if (type_ == EParameterType::Integer) {
        return fmt::format(L"{} [{} - {}]", label, parameter->Minimum(), parameter->Maximum());
    }
    if (type_ != EParameterType::Colour) return label;
    const CColorRef colour{static_cast<COLORREF>(parameter->Number())};
    return fmt::format(L"{} [#{:02X}{:02X}{:02X}]", label, colour.Red(), colour.Green(),
                       colour.Blue());
}
