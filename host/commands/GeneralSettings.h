#pragma once

#include <cstdint>

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"

// The settings that every repository has beside the command's own parameters: how the command runs
// and how its dialog opens. They are defined one by one and kept under their names.
struct IGeneralSettings : IUnknown {
    static constexpr GUID kId = MakeGuid("D0C3A9B4-58F2-4A6F-8E61-5C1B7F3E9A02");
    virtual void Define(const CString& name, std::int64_t value) = 0;
    virtual bool IsDefined(const CString& name) const = 0;
    // The value of a defined setting; 0 for others.
    virtual std::int64_t Value(const CString& name) const = 0;
};

// Makes the general settings of a repository, which keeps them; the caller gets one reference.
// Error 101 without a repository.
HOST_API CErrorAutoThrow CreateGeneralSettings(IParameterRepository* repository,
                                               IGeneralSettings** out);
// The general settings that the repository keeps, no reference added; null when none were made.
HOST_API IGeneralSettings* GeneralSettingsOf(IParameterRepository* repository);

HOST_API CErrorAutoThrow DefineExecutionMode(IGeneralSettings* general);
HOST_API CErrorAutoThrow DefineDlgPlacement(IGeneralSettings* general);
HOST_API CErrorAutoThrow DefinePreviewVisible(IGeneralSettings* general, bool visible);
HOST_API CErrorAutoThrow DefineAutoProof(IGeneralSettings* general, bool on);
HOST_API CErrorAutoThrow DefineRandomSeed(IGeneralSettings* general);
HOST_API CErrorAutoThrow DefineShowSelectionOnly(IGeneralSettings* general);
HOST_API CErrorAutoThrow DefineComponentVersionTuple(IGeneralSettings* general,
                                                     ICommandExecutionContext* context,
                                                     std::int32_t version);
HOST_API CErrorAutoThrow DefinePreviewMode(IGeneralSettings* general);
HOST_API CErrorAutoThrow DefineScreenControl(IGeneralSettings* general);
