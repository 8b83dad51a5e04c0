#pragma once

#include <glib-object.h>

#include <memory>
#include <string>

#include "capi/cmdtexture.h"

// What the C interface and GLib hand out, freed as each wants it.
struct SFreed {
    void operator()(cmdtexture_library* library) const { cmdtexture_close(library); }
    void operator()(cmdtexture_effect* effect) const { cmdtexture_effect_free(effect); }
    void operator()(cmdtexture_error* error) const { cmdtexture_error_free(error); }
    void operator()(char** names) const { cmdtexture_free_names(names); }
    void operator()(char* text) const { cmdtexture_free(text); }
};
template <class Thing>
using TOwned = std::unique_ptr<Thing, SFreed>;

// "what is wrong (what would be right)".
std::string Complaint(const cmdtexture_error* error);
