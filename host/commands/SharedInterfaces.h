#pragma once

#include "host/commands/CCmdEffect.h"
#include "host/core/HostApi.h"
#include "host/core/TUnknownImpl.h"

// Interfaces and classes of the framework for which every module exports the reference counting,
// whether it makes such objects or not. Only their identity matters here.
struct HOST_API IAppSvcExporter : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D01-0D0E-4B52-9E2A-4F5B6C7D8E01");
};
struct HOST_API ICacheableObjectEnumerator : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D02-0D0E-4B52-9E2A-4F5B6C7D8E02");
};
struct HOST_API ICacheableObjectSource : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D03-0D0E-4B52-9E2A-4F5B6C7D8E03");
};
struct HOST_API ICacheableThumbnail : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D04-0D0E-4B52-9E2A-4F5B6C7D8E04");
};
struct HOST_API IDLLGuidExporter : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D05-0D0E-4B52-9E2A-4F5B6C7D8E05");
};
struct HOST_API IDocViewExporter : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D06-0D0E-4B52-9E2A-4F5B6C7D8E06");
};
struct HOST_API IEventSink : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D07-0D0E-4B52-9E2A-4F5B6C7D8E07");
};
struct HOST_API IModuleActivation : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D08-0D0E-4B52-9E2A-4F5B6C7D8E08");
};
struct HOST_API IModuleComponentExporter : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D09-0D0E-4B52-9E2A-4F5B6C7D8E09");
};
struct HOST_API IUndoRepository : IUnknown {
    static constexpr GUID kId = MakeGuid("A1C35D0A-0D0E-4B52-9E2A-4F5B6C7D8E0A");
};

class HOST_API CAppSvcExporter;
class HOST_API CCacheableThumbnail;
class HOST_API CDLLGuidExporter;
class HOST_API CDocViewExporter;
class HOST_API CNEventSink;
class HOST_API CModuleActivation;
class HOST_API CModuleComponentExporter;
class HOST_API CUndoRepository;
class HOST_API VCacheableFile;
class HOST_API VCacheableFileEnumerator;
