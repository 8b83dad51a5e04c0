#include "capi/cmdtexture.h"

/* The numbers that programs may have compiled in. */
typedef char statuses_stay[CMDTEXTURE_USAGE == 2 && CMDTEXTURE_CANCELLED == 130 ? 1 : -1];
typedef char layouts_stay[CMDTEXTURE_GREY == 1 && CMDTEXTURE_BGRA == 6 ? 1 : -1];
typedef char records_stay[sizeof(cmdtexture_image) == 40 && sizeof(cmdtexture_run) == 48 ? 1 : -1];
