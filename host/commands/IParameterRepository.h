#pragma once

#include <cstdint>
#include <vector>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/CString.h"
#include "host/core/IUnknown.h"
#include "host/graphics/ColorRef.h"

struct ICommandExecutionContext;

// Typed access to numbered values: parameters of a repository, items of the global settings. Every
// operation fails with error 101 when there is no such index or it holds another type; the out
// argument then keeps its value.
template <class Value>
struct TParameterAccess : IUnknown {
    virtual CErrorAutoThrow GetValue(int index, Value& value) = 0;
    virtual CErrorAutoThrow SetValue(int index, const Value& value) = 0;
};
struct IIntegerParameters : TParameterAccess<std::int32_t> {
    static constexpr GUID kId = MakeGuid("C93879F9-19B5-4465-93CA-8DA01C905CEA");
    virtual CErrorAutoThrow GetRange(int index, std::int32_t& minimum, std::int32_t& maximum) = 0;
};
struct IBooleanParameters : TParameterAccess<bool> {
    static constexpr GUID kId = MakeGuid("27094073-DDA0-4F17-A0EE-0A63C9279CA8");
};
struct IEnumParameters : TParameterAccess<std::int32_t> {
    static constexpr GUID kId = MakeGuid("41D2A29F-A2AB-4491-9246-03BC09888AF4");
};
struct IColorParameters : TParameterAccess<COLORREF> {
    static constexpr GUID kId = MakeGuid("3DB82B9C-43AE-4547-A2FA-79BF502304E2");
};
struct IStringParameters : TParameterAccess<CString> {
    static constexpr GUID kId = MakeGuid("5B0C6C7E-7D4B-4C6A-9E43-2B6A5B0F3D11");
};

enum class EParameterType { Integer, Boolean, Enumeration, Colour, String };

// One parameter: its definition and its current value.
struct IParameter : IUnknown {
    static constexpr GUID kId = MakeGuid("0F7B52C4-6E0B-4B63-8A55-93B1D2A7C410");
    virtual EParameterType Type() const = 0;
    virtual const CString& Name() const = 0;
    virtual const CString& Label() const = 0;
    virtual const CString& Description() const = 0;
    // Integers: the range as defined; it may exclude the default. Enumerations: first and last
    // member. 0 for the others.
    virtual std::int32_t Minimum() const = 0;
    virtual std::int32_t Maximum() const = 0;
    // The name of an enumeration's type; empty for other types.
    virtual const CString& EnumType() const = 0;
    virtual std::uint32_t Flags() const = 0;
    // Integers, booleans (0, 1), enumeration members and packed colours are numbers; strings are
    // texts.
    virtual std::int64_t DefaultNumber() const = 0;
    virtual const CString& DefaultText() const = 0;
    virtual std::int64_t Number() const = 0;
    virtual const CString& Text() const = 0;
    virtual void SetNumber(std::int64_t value) = 0;
    virtual void SetText(const CString& value) = 0;
    // An independent copy with count 0.
    virtual IParameter* Copy() const = 0;
    // What people read for the members, in their order; empty where there are no such texts.
    virtual const std::vector<CString>& MemberLabels() const = 0;
    virtual void SetMemberLabels(std::vector<CString> labels) = 0;
};

// The store of a command's parameters, addressed by index. QueryInterface gives the typed access
// interfaces above.
struct IParameterRepository : IUnknown {
    static constexpr GUID kId = MakeGuid("7E6C1D35-4B1C-4E86-9C57-0D1B9B0D6A22");
    virtual void SetName(const CString& name) = 0;
    virtual const CString& Name() const = 0;
    // Stores the parameter, with a reference of its own, at an index; one that is already there is
    // replaced. Error 101 for a null parameter or a negative index.
    virtual CErrorAutoThrow Add(IParameter* parameter, int index) = 0;
    // Indices run from 0 to Count() - 1; an index that was never added gives null. No reference is
    // added.
    virtual int Count() const = 0;
    virtual IParameter* At(int index) const = 0;
    // Ends the definition for a context.
    virtual CErrorAutoThrow Complete(ICommandExecutionContext* context) = 0;
};
