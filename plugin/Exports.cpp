#include "host/commands/SharedInterfaces.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"
#include "host/windowing/CWinApp.h"
#include "module/CComponentExporter.h"
#include "plugin/AllCommands.h"

namespace {

// The module presents itself under the application's name, when the host tells it.
void TakeApplicationName(IHostObject* host) {
    TRef<IHostApplication> application;
    host->GetApplication(application.Receive()).Ignore();
    if (!application) return;
    CString name;
    application->GetName(name).Ignore();
    if (CWinApp* app = AfxGetApp()) app->SetAppName(name);
}

}  // namespace

extern "C" HOST_API std::int32_t GetExporter(IHostObject* host, IComponentExporter** out) {
    *out = new CComponentExporter;
    (*out)->AddRef();
    if (host) TakeApplicationName(host);
    for (const SCommandEntry& command : AllCommands()) {
        (*out)->RegisterComponent(command.description->name, false, command.factory);
    }
    return 0;
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
