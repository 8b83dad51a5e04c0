#include <map>
#include <vector>

#include "host/commands/ParameterDefinition.h"
#include "host/core/TUnknownImpl.h"

namespace {

class CParameter : public TUnknownImpl<CParameter, IParameter> {
  public:
    CParameter(EParameterType type, CString name, CString label, CString description,
               std::uint32_t flags)
        : type_(type),
          name_(std::move(name)),
          label_(std::move(label)),
          description_(std::move(description)),
          flags_(flags) {}

    void SetRange(std::int32_t minimum, std::int32_t maximum) {
        minimum_ = minimum;
        maximum_ = maximum;
    }
    void SetEnumType(const CString& type) { enum_type_ = type; }
    void SetDefault(std::int64_t number) { default_number_ = number_ = number; }
    void SetDefault(const CString& text) { default_text_ = text_ = text; }

    EParameterType Type() const override { return type_; }
    const CString& Name() const override { return name_; }
    const CString& Label() const override { return label_; }
    const CString& Description() const override { return description_; }
    std::int32_t Minimum() const override { return minimum_; }
    std::int32_t Maximum() const override { return maximum_; }
    const CString& EnumType() const override { return enum_type_; }
    std::uint32_t Flags() const override { return flags_; }
    std::int64_t DefaultNumber() const override { return default_number_; }
    const CString& DefaultText() const override { return default_text_; }
    std::int64_t Number() const override { return number_; }
    const CString& Text() const override { return text_; }
    void SetNumber(std::int64_t value) override { number_ = value; }
    void SetText(const CString& value) override { text_ = value; }
    IParameter* Copy() const override { return new CParameter(*this); }
    const std::vector<CString>& MemberLabels() const override { return member_labels_; }
    void SetMemberLabels(std::vector<CString> labels) override {
        member_labels_ = std::move(labels);
    }

  private:
    EParameterType type_;
    CString name_, label_, description_;
    std::uint32_t flags_;
    std::int32_t minimum_ = 0;
    std::int32_t maximum_ = 0;
    CString enum_type_;
    std::vector<CString> member_labels_;
    std::int64_t default_number_ = 0;
    std::int64_t number_ = 0;
    CString default_text_, text_;
};

CErrorAutoThrow Deliver(IParameter** out, CParameter* parameter) {
    parameter->AddRef();
    *out = parameter;
    return {};
}

}  // namespace

CErrorAutoThrow DefIntParam(IParameter** out, int /*index*/, const CString& name,
                            const CString& label, const CString& description, std::int32_t minimum,
                            std::int32_t maximum, std::int32_t default_value, std::uint32_t flags,
                            bool, bool) {
    return CatchErrors([&] {
        auto* parameter = new CParameter(EParameterType::Integer, name, label, description, flags);
        parameter->SetRange(minimum, maximum);
        parameter->SetDefault(default_value);
        return Deliver(out, parameter);
    });
}

CErrorAutoThrow DefColorParam(IParameter** out, int /*index*/, const CString& name,
                              const CString& label, const CString& description,
                              COLORREF default_value, std::uint32_t flags, bool, bool) {
    return CatchErrors([&] {
        auto* parameter = new CParameter(EParameterType::Colour, name, label, description, flags);
        parameter->SetDefault(default_value);
        return Deliver(out, parameter);
    });
}

CErrorAutoThrow DefEnumParam(IParameter** out, int /*index*/, const CString& type_name,
                             const CString& name, const CString& label, const CString& description,
                             std::int32_t default_member, std::uint32_t flags, bool, bool) {
    const auto& members = EnumMembers(type_name);
    if (members.empty()) return TolmErrorCode::UnusableInput;
    return CatchErrors([&] {
        const auto type =
            type_name == L"Boolean" ? EParameterType::Boolean : EParameterType::Enumeration;
        auto* parameter = new CParameter(type, name, label, description, flags);
        parameter->SetRange(0, static_cast<std::int32_t>(members.size()) - 1);
        parameter->SetEnumType(type_name);
        parameter->SetDefault(default_member);
        return Deliver(out, parameter);
    });
}

CErrorAutoThrow DefStringParam(IParameter** out, int /*index*/, const CString& name,
                               const CString& label, const CString& description,
                               const CString& default_value, std::uint32_t flags, bool, bool) {
    return CatchErrors([&] {
        auto* parameter = new CParameter(EParameterType::String, name, label, description, flags);
        parameter->SetDefault(default_value);
        return Deliver(out, parameter);
    });
}

const std::vector<std::string_view>& EnumMembers(const CString& type_name) {
    static const std::map<std::wstring, std::vector<std::string_view>> types = {
        {L"Boolean", {"false", "true"}},
        {L"TileShape", {"triangles", "squares", "hexagons"}},
        {L"ResourceListView", {"list", "thumbnails"}},
    };
    static const std::vector<std::string_view> none;
    const auto found = types.find(type_name.Text());
    return found == types.end() ? none : found->second;
}
