#pragma once

#include <cstdint>

#include "host/commands/ICommandExecutionContext.h"
#include "host/commands/IParameterRepository.h"
#include "host/core/CString.h"
#include "host/system/ResourceModule.h"

class VCommandImplementation;

// Asked for, and told of, attribute 5 of a resource data.
struct IAttributeObserver {
    virtual std::int32_t OnGetAttribute(const CString& component, std::uint8_t tag) = 0;
    virtual void OnSetAttribute(const CString& component, std::uint8_t tag, std::int32_t value) = 0;

  protected:
    ~IAttributeObserver() = default;
};

// What a component is called and how it is shown. Getters return copies.
struct HOST_API IResourceData : IUnknown {
    static constexpr GUID kId = MakeGuid("1AD7BB29-F540-43F9-980F-E58FC0CB048E");
    virtual CString GetComponentName() const = 0;
    virtual CString GetReservedText() const = 0;
    virtual CString GetTextA() const = 0;
    virtual GUID GetComponentGuid() const = 0;
    virtual const GUID* GetComponentGuidPtr() const = 0;
    virtual std::int32_t GetVersion() const = 0;
    virtual CString GetModuleName() const = 0;
    virtual std::int32_t GetImageId() const = 0;
    virtual std::int32_t GetCommandId() const = 0;
    // The module that holds the command's picture; null when there is none.
    virtual HMODULE GetImageModule() const = 0;
    // The three parts of one text, separated by line feeds.
    virtual CString GetPart0() const = 0;
    virtual CString GetPart2() const = 0;
    virtual CString GetPart1() const = 0;
    virtual CString GetTextById() const = 0;
    virtual CString GetDisplayName() const = 0;
    virtual CString GetEnglishDisplayName() const = 0;
    virtual CString GetTextC() const = 0;
    virtual CString GetTextB() const = 0;
    virtual void SetPart0(const CString& text) = 0;
    virtual void SetPart2(const CString& text) = 0;
    virtual void SetPart1(const CString& text) = 0;
    virtual void SetDisplayName(const CString& text) = 0;
    virtual void SetTextB(const CString& text) = 0;
    virtual void SetTextC(const CString& text) = 0;
    virtual CErrorAutoThrow SetAttribute(std::int32_t id, std::int32_t value) = 0;
    // 0 for an attribute that was never set.
    virtual std::int32_t GetAttribute(std::int32_t id) const = 0;
    // The observer is not owned; null removes it.
    virtual void SetAttributeObserver(IAttributeObserver* observer, std::uint8_t tag) = 0;
};

// A component that is a command: it also prepares the command's parameters and shows its dialog.
struct HOST_API ICmdResourceData : IResourceData {
    static constexpr GUID kId = MakeGuid("6C8A4CEC-8A7E-4219-824E-6DA4746C8B8E");
    virtual CErrorAutoThrow Reserved31() = 0;
    virtual CErrorAutoThrow Reserved32() = 0;
    // Defines the general settings and the parameters in the command's repository and, when
    // `finish` is set, completes it.
    virtual CErrorAutoThrow PrepareRepository(ICommandExecutionContext* context, bool finish,
                                              VCommandImplementation* command) = 0;
    // Lets the user edit the parameters; error 100 when the dialog was cancelled.
    virtual CErrorAutoThrow Edit(ICommandExecutionContext* context,
                                 VCommandImplementation* command) = 0;
};
