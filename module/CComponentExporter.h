#pragma once

#include <map>
#include <memory>
#include <vector>

#include "host/commands/IComponentExporter.h"
#include "host/core/HostApi.h"
#include "host/core/TUnknownImpl.h"

// The registered factories, each of which makes its component once. Has no lock: one exporter is
// used from one thread at a time.
class HOST_API CComponentExporter : public TUnknownImpl<CComponentExporter, IComponentExporter> {
  public:
    void RegisterComponent(const wchar_t* name, bool secondary, ComponentFactory factory) override;
    void CreateComponent(IComponentSink* sink, CString module_name, const wchar_t* name,
                         bool secondary) override;
    void CreateAllComponents(IComponentSink* sink, CString module_name) override;
    void GetComponentCounts(int* primary, int* primary_created, int* secondary,
                            int* secondary_created) override;
    bool AllComponentsCreated() override;

    bool FindDynamicCommand(IDynamicCommandTarget* target) override;
    // The host adds dynamic commands; this module has no dynamic menus.
    void AddDynamicCommandData(CDynamicCmdData* data) override;
    CString GetDynamicMenuNames() override { return {}; }
    void AddDynamicMenus(IUnknown*) override {}
    void RemoveDynamicMenus(IUnknown*) override {}

    void AddPaletteData(std::int32_t kind, std::int64_t first, std::uint8_t flag,
                        std::int64_t second) override;
    std::int32_t GetPaletteData(std::int32_t index, std::int32_t* kind, std::int64_t* first,
                                std::uint8_t* flag, std::int64_t* second) override;

  private:
    struct ComponentEntry {
        ComponentFactory factory;
        bool created = false;
    };
    struct SComponents {
        // Entries are held by whoever walks the map, too, so that one that is replaced meanwhile
        // stays valid.
        std::map<CString, std::shared_ptr<ComponentEntry>> entries;
        int created = 0;
    };
    struct CPaletteData {
        std::int32_t kind;
        std::int64_t first;
        std::uint8_t flag;
        std::int64_t second;
    };
    // Runs the entry's factory, once; one that fails may be called again.
    static void Create(SComponents& components, ComponentEntry& entry, IComponentSink* sink,
                       const CString& module_name, const wchar_t* name);
    SComponents& Map(bool secondary) { return secondary ? secondary_ : primary_; }

    SComponents primary_, secondary_;
    std::vector<CDynamicCmdData*> dynamic_commands_;
    // What FindDynamicCommand found last; not owned.
    CDynamicCmdData* current_dynamic_command_ = nullptr;
    IDynamicCommandTarget* current_dynamic_target_ = nullptr;
    std::vector<CPaletteData> palette_records_;
};
