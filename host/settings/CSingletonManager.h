#pragma once

#include "host/core/Guid.h"
#include "host/core/HostApi.h"
#include "host/core/IUnknown.h"
#include "host/core/TRef.h"

// The global settings: numbered items, each of which answers the parameter access interfaces.
struct IGlobalSettings : IUnknown {
    static constexpr GUID kId = MakeGuid("889F1FE9-5EEB-4353-A530-3C536B26FE98");
    // The item of the range scale, and its settings: whether it is on, and by how many per cent it
    // enlarges the ranges that follow it.
    static constexpr int kRangeItem = 134;
    static constexpr int kRangeScalePercent = 140;
    static constexpr int kRangeScaleOn = 141;
    // The item with a reference added, or null.
    virtual IUnknown* GetItem(int item) = 0;
};

// Services of which the process has one. GetInstanceVoid gives the service of an id with a
// reference added, or null when no such service is running.
class HOST_API CSingletonManager {
  public:
    static void* GetInstanceVoid(const GUID& id);

    template <class Service>
    static TRef<Service> Get() {
        return TRef<Service>::Adopt(static_cast<Service*>(GetInstanceVoid(Service::kId)));
    }
};
