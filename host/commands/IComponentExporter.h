#pragma once

#include <cstdint>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/CString.h"
#include "host/core/IUnknown.h"

struct ICoreCommand;
struct CDynamicCmdData;

// Takes the commands that a module's factories make.
struct IComponentSink {
    // The sink adds a reference of its own when it keeps the command.
    virtual void AddComponent(ICoreCommand* command, const CString& module_name) = 0;

  protected:
    ~IComponentSink() = default;
};

// The editor as a module sees it when it is loaded.
struct IHostApplication : IUnknown {
    virtual CErrorAutoThrow GetName(CString& name) = 0;
};
struct IHostObject : IUnknown {
    // Gives the application object with a reference added.
    virtual CErrorAutoThrow GetApplication(IHostApplication** out) = 0;
};

// Makes one component and hands it to the sink.
using ComponentFactory = void (*)(IComponentSink* sink, CString module_name,
                                  const wchar_t* component);

// Through this a module lets the host create its components, each at most once.
struct HOST_API IComponentExporter : IUnknown {
    static constexpr GUID kId = MakeGuid("2C673EF7-9884-4E07-8DBD-5ACA17279297");
    virtual void RegisterComponent(const wchar_t* name, bool secondary,
                                   ComponentFactory factory) = 0;
    // Does nothing for an unknown name and for a component that was already created.
    virtual void CreateComponent(IComponentSink* sink, CString module_name, const wchar_t* name,
                                 bool secondary) = 0;
    virtual void CreateAllComponents(IComponentSink* sink, CString module_name) = 0;
    virtual void GetComponentCounts(int* primary, int* primary_created, int* secondary,
                                    int* secondary_created) = 0;
    virtual bool AllComponentsCreated() = 0;
    virtual bool FindDynamicCommand(IUnknown* target) = 0;
    virtual CString GetDynamicMenuNames() = 0;
    virtual void AddDynamicMenus(IUnknown* target) = 0;
    virtual void RemoveDynamicMenus(IUnknown* target) = 0;
    virtual void AddDynamicCommandData(CDynamicCmdData* data) = 0;
    virtual void AddPaletteData(std::int32_t kind, std::int64_t first, std::uint8_t flag,
                                std::int64_t second) = 0;
    // Copies record `index` out when there is one; always answers how many there are.
    virtual std::int32_t GetPaletteData(std::int32_t index, std::int32_t* kind, std::int64_t* first,
                                        std::uint8_t* flag, std::int64_t* second) = 0;
};

// The one function by which a host enters a module. The exporter comes with one reference.
using GetExporterFunction = std::int32_t (*)(IHostObject* host, IComponentExporter** out);
