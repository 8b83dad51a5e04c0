#include "host/commands/SharedInterfaces.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"
#include "module/CComponentExporter.h"
#include "plugin/AllCommands.h"
#include "plugin/CTolmCmdTextureApp.h"

namespace {

// The module presents itself under the application's name, when the host tells it.
CErrorAutoThrow TakeApplicationName(IHostObject* host) {
    TRef<IHostApplication> application;
    host->GetApplication(application.Receive()).Ignore();
    if (!application) return {};
    CString name;
    CErrorAutoThrow error = application->GetName(name);
    if (!error.Failed()) ModuleApplication().SetAppName(name);
    return error;
}

}  // namespace

extern "C" HOST_API std::int32_t GetExporter(IHostObject* host, IComponentExporter** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    const CErrorAutoThrow error = CatchErrors([&]() -> CErrorAutoThrow {
        TRef<IComponentExporter> exporter(new CComponentExporter);
        for (const SCommandEntry& command : AllCommands()) {
            exporter->RegisterComponent(command.description->name, false, command.factory);
        }
        *out = exporter.Detach();
        return {};
    });
    if (error.Failed()) return E_FAIL;
    if (host) CatchErrors([&] { return TakeApplicationName(host); }).Ignore();
    return S_OK;
}

extern "C" HOST_API bool BuildIsDebug() { return false; }

// The framework's reference counting, which its modules share by exporting it.
template class TUnknownCoreImpl<IAppSvcExporter>;
template class TUnknownCoreImpl<ICacheableObjectEnumerator>;
template class TUnknownCoreImpl<ICacheableObjectSource>;
template class TUnknownCoreImpl<ICacheableThumbnail>;
template class TUnknownCoreImpl<ICmdResourceData>;
template class TUnknownCoreImpl<IComponentExporter>;
template class TUnknownCoreImpl<ICoreCommand>;
template class TUnknownCoreImpl<IDLLGuidExporter>;
template class TUnknownCoreImpl<IDocViewExporter>;
template class TUnknownCoreImpl<IEventSink>;
template class TUnknownCoreImpl<IModuleActivation>;
template class TUnknownCoreImpl<IModuleComponentExporter>;
template class TUnknownCoreImpl<IUndoRepository>;
template class TUnknownImpl<CAppSvcExporter, IAppSvcExporter>;
template class TUnknownImpl<CCacheableThumbnail, ICacheableThumbnail>;
template class TUnknownImpl<CComponentExporter, IComponentExporter>;
template class TUnknownImpl<CDLLGuidExporter, IDLLGuidExporter>;
template class TUnknownImpl<CDocViewExporter, IDocViewExporter>;
template class TUnknownImpl<CNEventSink, IEventSink>;
template class TUnknownImpl<CModuleActivation, IModuleActivation>;
template class TUnknownImpl<CModuleComponentExporter, IModuleComponentExporter>;
template class TUnknownImpl<CUndoRepository, IUndoRepository>;
template class TUnknownImpl<VCacheableFile, ICacheableObjectSource>;
template class TUnknownImpl<VCacheableFileEnumerator, ICacheableObjectEnumerator>;
