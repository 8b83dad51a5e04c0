#include "module/CComponentExporter.h"

#include "module/CTolmResourceManager.h"

// Nothing here can report a failure, and no exception may pass to the host: what fails is not done.

void CComponentExporter::RegisterComponent(const wchar_t* name, bool secondary,
                                           ComponentFactory factory) {
    if (!name || !factory) return;
    CatchErrors([&]() -> CErrorAutoThrow {
        Map(secondary).entries[name] = std::make_shared<ComponentEntry>(ComponentEntry{factory});
        return {};
    }).Ignore();
}

void CComponentExporter::CreateComponent(IComponentSink* sink, CString module_name,
                                         const wchar_t* name, bool secondary) {
    if (!name) return;
    CatchErrors([&]() -> CErrorAutoThrow {
        SComponents& components = Map(secondary);
        const auto found = components.entries.find(name);
        if (found == components.entries.end()) return {};
        const std::shared_ptr<ComponentEntry> entry = found->second;
        const CTolmResourceManager resources(module_name);
        Create(components, *entry, sink, module_name, name);
        return {};
    }).Ignore();
}

void CComponentExporter::CreateAllComponents(IComponentSink* sink, CString module_name) {
    CatchErrors([&]() -> CErrorAutoThrow {
        for (const bool secondary : {false, true}) {
            SComponents& components = Map(secondary);
            const auto walked = components.entries;
            for (const auto& [name, entry] : walked) {
                Create(components, *entry, sink, module_name, name.GetString());
            }
        }
        return {};
    }).Ignore();
}

void CComponentExporter::Create(SComponents& components, ComponentEntry& entry,
                                IComponentSink* sink, const CString& module_name,
                                const wchar_t* name) {
    if (entry.created) return;
    entry.created = true;
    const CErrorAutoThrow error = CatchErrors([&]() -> CErrorAutoThrow {
        entry.factory(sink, module_name, name);
        ++components.created;
        return {};
    });
    entry.created = !error.Failed();
}

void CComponentExporter::GetComponentCounts(int* primary, int* primary_created, int* secondary,
                                            int* secondary_created) {
    const auto tell = [](int* place, std::size_t count) {
        if (place) *place = static_cast<int>(count);
    };
    tell(primary, primary_.entries.size());
    tell(primary_created, static_cast<std::size_t>(primary_.created));
    tell(secondary, secondary_.entries.size());
    tell(secondary_created, static_cast<std::size_t>(secondary_.created));
}

bool CComponentExporter::AllComponentsCreated() {
    const auto all = [](const SComponents& components) {
        return components.created >= static_cast<int>(components.entries.size());
    };
    return all(primary_) && all(secondary_);
}

bool CComponentExporter::FindDynamicCommand(IDynamicCommandTarget* target) {
    if (!target || dynamic_commands_.empty()) return false;
    constexpr std::int32_t kEveryKind = 3, kNotCovered = 2;
    const std::int32_t kind = target->GetKind();
    const float version = target->GetVersion();
    for (CDynamicCmdData* data : dynamic_commands_) {
        const bool fits = data->kind == kind || (data->kind == kEveryKind && kind != kNotCovered);
        if (!fits || version < data->minimumVersion || version > data->maximumVersion) continue;
        current_dynamic_command_ = data;
        current_dynamic_target_ = target;
        return true;
    }
    return false;
}

void CComponentExporter::AddDynamicCommandData(CDynamicCmdData* data) {
    if (!data) return;
    CatchErrors([&]() -> CErrorAutoThrow {
        dynamic_commands_.push_back(data);
        return {};
    }).Ignore();
}

void CComponentExporter::AddPaletteData(std::int32_t kind, std::int64_t first, std::uint8_t flag,
                                        std::int64_t second) {
    CatchErrors([&]() -> CErrorAutoThrow {
        palette_records_.push_back({kind, first, flag, second});
        return {};
    }).Ignore();
}

std::int32_t CComponentExporter::GetPaletteData(std::int32_t index, std::int32_t* kind,
                                                std::int64_t* first, std::uint8_t* flag,
                                                std::int64_t* second) {
    const auto count = static_cast<std::int32_t>(palette_records_.size());
    if (index >= 0 && index < count) {
        const CPaletteData& record = palette_records_[static_cast<std::size_t>(index)];
        if (kind) *kind = record.kind;
        if (first) *first = record.first;
        if (flag) *flag = record.flag;
        if (second) *second = record.second;
    }
    return count;
}
