#include "hostlib/settings/GlobalSettings.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>

#include "host/commands/IParameterRepository.h"
#include "host/core/TUnknownImpl.h"
#include "host/settings/CSingletonManager.h"
#include "host/system/Registry.h"

namespace {

// A setting as it is kept: no scale makes a maximum vanish, or leaves what dialogs can show.
std::int32_t Bounded(int index, std::int32_t value) {
    return index == IGlobalSettings::kRangeScalePercent ? std::clamp(value, -99, 900) : value;
}

struct SValues {
    std::mutex mutex;
    std::map<int, std::int32_t> by_index;
};

SValues& Values() {
    static SValues values;
    static std::once_flag read;
    std::call_once(read, [] {
        const CString key = L"Software\\Quarn\\Brushwerk\\X15\\Settings";
        const auto number = [&](const wchar_t* name) {
            return static_cast<std::int32_t>(
                ReadRegistryNumber(ERegistryHive::CurrentUser, key, name).value_or(0));
        };
        constexpr int kPercent = IGlobalSettings::kRangeScalePercent;
        values.by_index = {{kPercent, Bounded(kPercent, number(L"RangeScalePercent"))},
                           {IGlobalSettings::kRangeScaleOn, number(L"RangeScale")}};
    });
    return values;
}

// The item's settings under one access interface.
template <class Interface>
class TSettingsAccess : public Interface {
  public:
    explicit TSettingsAccess(IUnknown* owner) : owner_(owner) {}
    HRESULT QueryInterface(const GUID& id, void** out) override {
        return owner_->QueryInterface(id, out);
    }
    std::uint32_t AddRef() override { return owner_->AddRef(); }
    std::uint32_t Release() override { return owner_->Release(); }
    CErrorAutoThrow GetValue(int index, std::int32_t& value) override {
        const std::lock_guard lock(Values().mutex);
        const auto found = Values().by_index.find(index);
        if (found == Values().by_index.end()) return TolmErrorCode::UnusableInput;
        value = found->second;
        return {};
    }
    CErrorAutoThrow SetValue(int index, const std::int32_t& value) override {
        const std::lock_guard lock(Values().mutex);
        Values().by_index[index] = Bounded(index, value);
        return {};
    }

  private:
    IUnknown* owner_;
};

class CIntegerSettings : public TSettingsAccess<IIntegerParameters> {
  public:
    using TSettingsAccess::TSettingsAccess;
    CErrorAutoThrow GetRange(int, std::int32_t&, std::int32_t&) override {
        return TolmErrorCode::UnusableInput;
    }
};

// Both objects live as long as the process: their counts are kept, nothing destroys them.
class CRangeItem : public IUnknown {
  public:
    HRESULT QueryInterface(const GUID& id, void** out) override {
        IUnknown* found = id == IIntegerParameters::kId ? static_cast<IUnknown*>(&integers_)
                          : id == IEnumParameters::kId  ? static_cast<IUnknown*>(&enums_)
                          : id == IID_IUnknown          ? this
                                                        : nullptr;
        *out = found;
        return found ? S_OK : E_NOINTERFACE;
    }
    std::uint32_t AddRef() override { return ++count_; }
    std::uint32_t Release() override { return --count_; }

  private:
    std::atomic<std::uint32_t> count_ = 1;
    CIntegerSettings integers_{this};
    TSettingsAccess<IEnumParameters> enums_{this};
};

class CGlobalSettings : public TUnknownImpl<CGlobalSettings, IGlobalSettings> {
  public:
    IUnknown* GetItem(int item) override {
        static CRangeItem range;
        if (item != kRangeItem) return nullptr;
        range.AddRef();
        return &range;
    }
};

}  // namespace

void SetRangeScale(int percent, bool enabled) {
    const std::lock_guard lock(Values().mutex);
    constexpr int kPercent = IGlobalSettings::kRangeScalePercent;
    Values().by_index[kPercent] = Bounded(kPercent, percent);
    Values().by_index[IGlobalSettings::kRangeScaleOn] = enabled ? 1 : 0;
}

SRangeScale GetRangeScale() {
    const std::lock_guard lock(Values().mutex);
    return {Values().by_index[IGlobalSettings::kRangeScalePercent],
            Values().by_index[IGlobalSettings::kRangeScaleOn] != 0};
}

void* CSingletonManager::GetInstanceVoid(const GUID& id) {
    static const TRef<IGlobalSettings> settings(new CGlobalSettings);
    if (id != IGlobalSettings::kId) return nullptr;
    settings->AddRef();
    return settings.Get();
}
