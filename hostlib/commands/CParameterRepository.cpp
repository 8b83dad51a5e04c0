#include "hostlib/commands/CParameterRepository.h"

#include <map>
#include <memory>

namespace {

// Typed access to a repository's parameters: Number() or Text() of the ones of the right type.
template <class Interface, class Value>
class TAccess : public Interface {
  public:
    TAccess(IParameterRepository* owner, EParameterType type) : owner_(owner), type_(type) {}

    HRESULT QueryInterface(const GUID& id, void** out) override {
        return owner_->QueryInterface(id, out);
    }
    std::uint32_t AddRef() override { return owner_->AddRef(); }
    std::uint32_t Release() override { return owner_->Release(); }

    CErrorAutoThrow GetValue(int index, Value& value) override {
        const IParameter* parameter = Find(index);
        if (!parameter) return TolmErrorCode::UnusableInput;
        if constexpr (std::is_same_v<Value, CString>) {
            value = parameter->Text();
        } else {
            value = static_cast<Value>(parameter->Number());
        }
        return {};
    }
    CErrorAutoThrow SetValue(int index, const Value& value) override {
        IParameter* parameter = Find(index);
        if (!parameter) return TolmErrorCode::UnusableInput;
        if constexpr (std::is_same_v<Value, CString>) {
            parameter->SetText(value);
        } else {
            parameter->SetNumber(value);
        }
        return {};
    }

  protected:
    IParameter* Find(int index) const {
        IParameter* parameter = owner_->At(index);
        return parameter && parameter->Type() == type_ ? parameter : nullptr;
    }

  private:
    IParameterRepository* owner_;
    EParameterType type_;
};

class CIntegerAccess : public TAccess<IIntegerParameters, std::int32_t> {
  public:
    using TAccess::TAccess;
    CErrorAutoThrow GetRange(int index, std::int32_t& minimum, std::int32_t& maximum) override {
        const IParameter* parameter = Find(index);
        if (!parameter) return TolmErrorCode::UnusableInput;
        minimum = parameter->Minimum();
        maximum = parameter->Maximum();
        return {};
    }
};

class CGeneralSettings : public TUnknownImpl<CGeneralSettings, IGeneralSettings> {
  public:
    void Define(const CString& name, std::int64_t value) override { values_[name.Text()] = value; }
    bool IsDefined(const CString& name) const override { return values_.contains(name.Text()); }
    std::int64_t Value(const CString& name) const override {
        const auto found = values_.find(name.Text());
        return found == values_.end() ? 0 : found->second;
    }

  private:
    std::map<std::wstring, std::int64_t> values_;
};

CErrorAutoThrow Define(IGeneralSettings* general, const wchar_t* name, std::int64_t value) {
    if (!general) return TolmErrorCode::UnusableInput;
    general->Define(name, value);
    return {};
}

}  // namespace

struct CParameterRepository::SAccess {
    explicit SAccess(IParameterRepository* owner)
        : integers(owner, EParameterType::Integer),
          booleans(owner, EParameterType::Boolean),
          enumerations(owner, EParameterType::Enumeration),
          colours(owner, EParameterType::Colour),
          strings(owner, EParameterType::String) {}

    CIntegerAccess integers;
    TAccess<IBooleanParameters, bool> booleans;
    TAccess<IEnumParameters, std::int32_t> enumerations;
    TAccess<IColorParameters, COLORREF> colours;
    TAccess<IStringParameters, CString> strings;
};

CParameterRepository::CParameterRepository() : access_(std::make_unique<SAccess>(this)) {}
CParameterRepository::~CParameterRepository() = default;

CParameterRepository::CParameterRepository(const CParameterRepository& other)
    : TUnknownCoreImpl(other), name_(other.name_), general_(other.general_) {
    access_ = std::make_unique<SAccess>(this);
    for (const auto& parameter : other.parameters_) {
        parameters_.emplace_back(parameter ? parameter->Copy() : nullptr);
    }
}

HRESULT CParameterRepository::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    const auto deliver = [&](auto* access) {
        AddRef();
        *out = access;
        return S_OK;
    };
    if (id == IIntegerParameters::kId) return deliver(&access_->integers);
    if (id == IBooleanParameters::kId) return deliver(&access_->booleans);
    if (id == IEnumParameters::kId) return deliver(&access_->enumerations);
    if (id == IColorParameters::kId) return deliver(&access_->colours);
    if (id == IStringParameters::kId) return deliver(&access_->strings);
    return TUnknownCoreImpl::QueryInterface(id, out);
}

CErrorAutoThrow CParameterRepository::Add(IParameter* parameter, int index) {
    if (!parameter || index < 0) return TolmErrorCode::UnusableInput;
    const auto at = static_cast<std::size_t>(index);
    if (at >= parameters_.size()) parameters_.resize(at + 1);
    parameters_[at] = parameter;
    return {};
}

IParameter* CParameterRepository::At(int index) const {
    return index >= 0 && index < Count() ? parameters_[static_cast<std::size_t>(index)].Get()
                                         : nullptr;
}

CErrorAutoThrow CreateGeneralSettings(IParameterRepository* repository, IGeneralSettings** out) {
    auto* owner = dynamic_cast<CParameterRepository*>(repository);
    if (!owner) return TolmErrorCode::UnusableInput;
    TRef<IGeneralSettings> general(new CGeneralSettings);
    owner->SetGeneral(general);
    *out = general.Detach();
    return {};
}

IGeneralSettings* GeneralSettingsOf(IParameterRepository* repository) {
    auto* owner = dynamic_cast<CParameterRepository*>(repository);
    return owner ? owner->General() : nullptr;
}

CErrorAutoThrow DefineExecutionMode(IGeneralSettings* general) {
    return Define(general, L"ExecutionMode", 0);
}
CErrorAutoThrow DefineDlgPlacement(IGeneralSettings* general) {
    return Define(general, L"DialogPlacement", 0);
}
CErrorAutoThrow DefinePreviewVisible(IGeneralSettings* general, bool visible) {
    return Define(general, L"PreviewVisible", visible ? 1 : 0);
}
CErrorAutoThrow DefineAutoProof(IGeneralSettings* general, bool on) {
    return Define(general, L"AutoProof", on ? 1 : 0);
}
CErrorAutoThrow DefineRandomSeed(IGeneralSettings* general) {
    return Define(general, L"RandomSeed", 0);
}
CErrorAutoThrow DefineShowSelectionOnly(IGeneralSettings* general) {
    return Define(general, L"ShowSelectionOnly", 0);
}
CErrorAutoThrow DefineComponentVersionTuple(IGeneralSettings* general, ICommandExecutionContext*,
                                            std::int32_t version) {
    return Define(general, L"ComponentVersion", version);
}
CErrorAutoThrow DefinePreviewMode(IGeneralSettings* general) {
    return Define(general, L"PreviewMode", 0);
}
CErrorAutoThrow DefineScreenControl(IGeneralSettings* general) {
    return Define(general, L"ScreenControl", 0);
}
