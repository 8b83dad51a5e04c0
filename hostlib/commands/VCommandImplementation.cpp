#include "host/commands/CCmdEffect.h"
#include "hostlib/commands/CParameterRepository.h"

VCommandImplementation::VCommandImplementation() = default;
VCommandImplementation::~VCommandImplementation() = default;

VCommandImplementation::VCommandImplementation(const VCommandImplementation& other)
    : TUnknownCoreImpl(other),
      attributes_(other.attributes_),
      resource_data_(other.resource_data_) {
    if (const auto* repository = dynamic_cast<CParameterRepository*>(other.repository_.Get())) {
        repository_ = new CParameterRepository(*repository);
    }
}

CErrorAutoThrow VCommandImplementation::SetAttribute(std::int32_t attribute, std::int32_t value) {
    attributes_[attribute] = value;
    return {};
}

std::int32_t VCommandImplementation::GetAttribute(std::int32_t attribute) const {
    const auto found = attributes_.find(attribute);
    return found == attributes_.end() ? 0 : found->second;
}

CErrorAutoThrow VCommandImplementation::BindResourceData(ICmdResourceData* data) {
    resource_data_ = data;
    return {};
}

CErrorAutoThrow VCommandImplementation::GetParameterRepository(IParameterRepository** out,
                                                               bool reset) {
    if (!out) return TolmErrorCode::UnusableInput;
    return CatchErrors([&]() -> CErrorAutoThrow {
        if (!repository_ || reset) repository_ = new CParameterRepository;
        repository_->AddRef();
        *out = repository_.Get();
        return {};
    });
}

bool VCommandImplementation::IsIE() const { return false; }

bool VCommandImplementation::SetValidateVector(CValidateVector& /*entries*/) { return true; }

void VCommandImplementation::PushValidateEnum(CValidateVector& entries, std::int32_t requirement,
                                              bool a, bool b, bool c, bool d,
                                              std::int32_t argument) {
    entries.push_back({requirement, {a, b, c, d}, argument});
}

// Both interfaces lie at fixed places in every command object, whatever its class.
HRESULT VCommandWithPreview::QueryInterface(const GUID& id, void** out) {
    const auto* core = reinterpret_cast<const char*>(static_cast<const ICoreCommand*>(this));
    const auto* preview = reinterpret_cast<const char*>(static_cast<const ICommandPreview*>(this));
    const SInterfaceEntry table[] = {
        {&ICoreCommand::kId, 0}, {&ICommandPreview::kId, preview - core}, {nullptr, 0}};
    return AnswerFrom(table, static_cast<ICoreCommand*>(this), id, out);
}
