#pragma once

#include <cstdint>

#include "host/core/Guid.h"
#include "host/core/HostApi.h"

using HRESULT = std::int32_t;
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003U);  // a null out argument
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005U);

inline constexpr GUID IID_IUnknown = MakeGuid("00000000-0000-0000-C000-000000000046");

// The root of every interface between module and host. Objects start with count 0; whoever keeps
// a pointer adds a reference and releases it.
struct HOST_API IUnknown {
    // Gives the interface `id` with a reference added, or E_NOINTERFACE and a null pointer;
    // E_POINTER without a place for it.
    virtual HRESULT QueryInterface(const GUID& id, void** out) = 0;
    // Both return the new count; Release destroys the object when it reaches 0.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;
    virtual ~IUnknown() = default;
};
