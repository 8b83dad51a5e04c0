#include "capi/Handles.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "hostlib/graphics/PixelBudget.h"

namespace {

cmdtexture_status StatusOf(EJobFault fault) {
    switch (fault) {
        case EJobFault::Refused:
        case EJobFault::Preset:
        case EJobFault::UnknownEffect:
        case EJobFault::UnknownLanguage:
        case EJobFault::UnknownResource:
            return CMDTEXTURE_USAGE;
        case EJobFault::Resource:
        case EJobFault::Scratch:
            return CMDTEXTURE_OUTPUT;
        case EJobFault::Unreadable:
            return CMDTEXTURE_UNREADABLE;
        case EJobFault::NotLoaded:
        case EJobFault::Effect:
            return CMDTEXTURE_EFFECT;
        case EJobFault::Cancelled:
            return CMDTEXTURE_CANCELLED;
        case EJobFault::Memory:
            return CMDTEXTURE_LIMIT;
        case EJobFault::Fault:
            break;
    }
    return CMDTEXTURE_FAULT;
}

// Without the memory for it, the status alone tells.
cmdtexture_status Fail(cmdtexture_error** error, cmdtexture_status status, const char* message,
                       const char* hint = "") noexcept {
    try {
        if (error) *error = new cmdtexture_error{status, message, hint};
    } catch (const std::bad_alloc&) {
        *error = nullptr;
    }
    return status;
}

cmdtexture_type TypeOf(EParameterType type) {
    switch (type) {
        case EParameterType::Integer:
            return CMDTEXTURE_INTEGER;
        case EParameterType::Boolean:
            return CMDTEXTURE_BOOLEAN;
        case EParameterType::Enumeration:
            return CMDTEXTURE_ENUMERATION;
        case EParameterType::Colour:
            return CMDTEXTURE_COLOUR;
        case EParameterType::String:
            break;
    }
    return CMDTEXTURE_STRING;
}

cmdtexture_resource ResourceOf(int type) {
    if (type == CFileResourceLibrary::kPatterns) return CMDTEXTURE_PATTERN;
    return type == CFileResourceLibrary::kTextures ? CMDTEXTURE_TEXTURE : CMDTEXTURE_NO_RESOURCE;
}

// Calls on pictures of one size find the memory of the call before, as long as a library is open:
// that of three of 24 megapixels with four samples of 16 bits.
std::shared_ptr<void> KeepSpareMemory() {
    static std::mutex mutex;
    static int users = 0;
    const auto change = [](int by) {
        const std::scoped_lock lock(mutex);
        users += by;
        SetPixelBudget({.spare = users > 0 ? std::uint64_t{600} << 20 : 0});
    };
    change(1);
    return {nullptr, [change](void*) { change(-1); }};
}

}  // namespace

cmdtexture_status Guard(cmdtexture_error** error, const std::function<void()>& work) noexcept {
    try {
        work();
        return CMDTEXTURE_OK;
    } catch (const CJobError& failure) {
        return Fail(error, StatusOf(failure.Fault()), failure.what(), failure.Hint().c_str());
    } catch (const std::bad_alloc&) {
        return Fail(error, CMDTEXTURE_LIMIT, "there is not enough memory");
    } catch (const std::exception& failure) {
        return Fail(error, CMDTEXTURE_FAULT, failure.what());
    } catch (...) {
        return Fail(error, CMDTEXTURE_FAULT, "unknown fault");
    }
}

void RefuseNull(const char* name) {
    throw CJobError(EJobFault::Refused, std::string(name) + " is NULL");
}

char* Duplicate(const std::string& text) {
    char* copy = strdup(text.c_str());
    if (!copy) throw std::bad_alloc();
    return copy;
}

char** Duplicate(const std::vector<std::string>& names) {
    auto** copies = static_cast<char**>(std::calloc(names.size() + 1, sizeof(char*)));
    if (!copies) throw std::bad_alloc();
    for (std::size_t i = 0; i < names.size(); ++i) {
        copies[i] = strdup(names[i].c_str());
        if (copies[i]) continue;
        cmdtexture_free_names(copies);
        throw std::bad_alloc();
    }
    return copies;
}

cmdtexture_library::cmdtexture_library(CJobLibrary opened)
    : jobs(std::move(opened)), effects(jobs.Effects()), spare_memory(KeepSpareMemory()) {
    for (const SEffectInfo& effect : effects) {
        records.push_back({effect.name.c_str(), effect.display_name.c_str(),
                           effect.english_name.c_str(), effect.guid.c_str(),
                           effect.description.c_str()});
    }
}

void cmdtexture_effect::Describe() {
    info = job.Describe();
    members.assign(info.parameters.size(), {});
    member_labels = members;
    records.clear();
    for (const SParameterInfo& parameter : info.parameters) {
        auto& names = members[records.size()];
        auto& labels = member_labels[records.size()];
        for (const std::string& member : parameter.members) names.push_back(member.c_str());
        for (const std::string& label : parameter.member_labels) labels.push_back(label.c_str());
        records.push_back({parameter.name.c_str(), parameter.label.c_str(),
                           parameter.description.c_str(), parameter.accepts.c_str(),
                           TypeOf(parameter.type), parameter.minimum, parameter.maximum,
                           parameter.default_number, parameter.default_text.c_str(), names.size(),
                           names.data(), ResourceOf(parameter.resource_type), labels.data()});
    }
}
