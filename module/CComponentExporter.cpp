#include "module/CComponentExporter.h"

#include "module/CTolmResourceManager.h"

void CComponentExporter::RegisterComponent(const wchar_t* name, bool secondary,
                                           ComponentFactory factory) {
    Map(secondary).entries[name] = std::make_shared<ComponentEntry>(ComponentEntry{factory});
}

void CComponentExporter::CreateComponent(IComponentSink* sink, CString module_name,
                                         const wchar_t* name, bool secondary) {
    SComponents& components = Map(secondary);
    const auto found = components.entries.find(name);
    if (found == components.entries.end() || found->second->created) return;
    const std::shared_ptr<ComponentEntry> entry = found->second;
    const CTolmResourceManager resources(module_name);
    entry->created = true;
    entry->factory(sink, module_name, name);
    ++components.created;
}

void CComponentExporter::CreateAllComponents(IComponentSink* sink, CString module_name) {
    for (const bool secondary : {false, true}) {
        SComponents& components = Map(secondary);
        const auto walked = components.entries;
        for (const auto& [name, entry] : walked) {
            if (entry->created) continue;
            entry->factory(sink, module_name, name.GetString());
            entry->created = true;
            ++components.created;
        }
    }
}

void CComponentExporter::GetComponentCounts(int* primary, int* primary_created, int* secondary,
                                            int* secondary_created) {
    *primary = static_cast<int>(primary_.entries.size());
    *primary_created = primary_.created;
    *secondary = static_cast<int>(secondary_.entries.size());
    *secondary_created = secondary_.created;
}

bool CComponentExporter::AllComponentsCreated() {
    const auto all = [](const SComponents& components) {
        return components.created >= static_cast<int>(components.entries.size());
    };
    return all(primary_) && all(secondary_);
}

void CComponentExporter::AddPaletteData(std::int32_t kind, std::int64_t first, std::uint8_t flag,
                                        std::int64_t second) {
    paletteRecords_.push_back({kind, first, flag, second});
}

std::int32_t CComponentExporter::GetPaletteData(std::int32_t index, std::int32_t* kind,
                                                std::int64_t* first, std::uint8_t* flag,
                                                std::int64_t* second) {
    const auto count = static_cast<std::int32_t>(paletteRecords_.size());
    if (index >= 0 && index < count) {
        const CPaletteData& record = paletteRecords_[static_cast<std::size_t>(index)];
        *kind = record.kind;
        *first = record.first;
        *flag = record.flag;
        *second = record.second;
    }
    return count;
}
