#pragma once

#include <cstdint>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/CString.h"
#include "host/core/IUnknown.h"

struct ICoreCommand;

// A command that the host defines itself: which kind of object and which versions it is for.
struct CDynamicCmdData {
    std::int32_t kind = 0;
    float minimumVersion = 0;
    float maximumVersion = 0;
};
// An object of the host's for which a dynamic command may be wanted.
struct IDynamicCommandTarget : IUnknown {
    static constexpr GUID kId = MakeGuid("E3B1C7D4-6A52-4D0B-8C3E-91F2A7054B68");
    virtual std::int32_t GetKind() = 0;
    virtual float GetVersion() = 0;
};

// Takes the commands that a module's factories make.
struct IComponentSink {
    // The sink adds a reference of its own when it keeps the command.
    virtual void AddComponent(ICoreCommand* command, const CString& module_name) = 0;

  protected:
    ~IComponentSink() = default;
};

// The editor as a module sees it when it is loaded.
struct IHostApplication : IUnknown {
    static constexpr GUID kId = MakeGuid("5D7E0A93-2C41-4B8F-A6D0-38E1F49B7C20");
    virtual CErrorAutoThrow GetName(CString& name) = 0;
};
struct IHostObject : IUnknown {
    static constexpr GUID kId = MakeGuid("91A4F2C6-7B0D-4E35-B8F1-6C20D95E3A74");
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
    // Places that are null are left out.
    virtual void GetComponentCounts(int* primary, int* primary_created, int* secondary,
                                    int* secondary_created) = 0;
    virtual bool AllComponentsCreated() = 0;
    // Whether there is a dynamic command for the object, which is remembered with it. A record of
    // kind 3 is for every kind but 2; both ends of its range of versions count.
    virtual bool FindDynamicCommand(IDynamicCommandTarget* target) = 0;
    virtual CString GetDynamicMenuNames() = 0;
    virtual void AddDynamicMenus(IUnknown* target) = 0;
    virtual void RemoveDynamicMenus(IUnknown* target) = 0;
    // The record is not owned and outlives the exporter.
    virtual void AddDynamicCommandData(CDynamicCmdData* data) = 0;
    virtual void AddPaletteData(std::int32_t kind, std::int64_t first, std::uint8_t flag,
                                std::int64_t second) = 0;
    // Copies record `index` out when there is one; always answers how many there are.
    virtual std::int32_t GetPaletteData(std::int32_t index, std::int32_t* kind, std::int64_t* first,
                                        std::uint8_t* flag, std::int64_t* second) = 0;
};

// The one function by which a host enters a module. The exporter comes with one reference. Answers
// 0; E_POINTER without a place for the exporter, E_FAIL when none could be made.
using GetExporterFunction = std::int32_t (*)(IHostObject* host, IComponentExporter** out);
