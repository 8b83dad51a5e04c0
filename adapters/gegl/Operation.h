#pragma once

#include "adapters/gegl/Properties.h"

// Registers the effect with GEGL as the operation "cmdtexture:" and its name, unless that has been
// done. The library stays open for it.
void RegisterOperation(const cmdtexture_library& library, const cmdtexture_effect_info& effect);
