#define G_LOG_DOMAIN "GEGL"
#include <gegl-plugin.h>

#include "adapters/gegl/Operation.h"

// What GEGL asks a module of operations for. The linker keeps the module loaded for good, so types,
// library and kinds may stay as long as the process.

extern "C" {
G_MODULE_EXPORT const GeglModuleInfo* gegl_module_query(GTypeModule* module);
G_MODULE_EXPORT gboolean gegl_module_register(GTypeModule* module);
}

const GeglModuleInfo* gegl_module_query(GTypeModule*) {
    static const GeglModuleInfo kInfo = {GEGL_MODULE_ABI_VERSION};
    return &kInfo;
}

gboolean gegl_module_register(GTypeModule*) {
    cmdtexture_library* library = nullptr;
    cmdtexture_error* failed = nullptr;
    if (cmdtexture_open(nullptr, &library, &failed) != CMDTEXTURE_OK) {
        const TOwned<cmdtexture_error> error(failed);
        g_warning("cmdtexture: there are no operations: %s", Complaint(failed).c_str());
        return FALSE;
    }
    for (std::size_t i = 0; const auto* effect = cmdtexture_effect_at(library, i); ++i) {
        RegisterOperation(*library, *effect);
    }
    return TRUE;
}
