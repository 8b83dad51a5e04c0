#pragma once

#include "host/commands/ICommandExecutionContext.h"

// Pictures that commands take by name from the library of their execution context (which may be
// null); the empty name is the first of its kind. Unattached when a picture cannot be had.

// The image of a pattern, without alpha.
CRowIteratorBands LoadPatternImage(ICommandExecutionContext* context, const CString& name);
// The image of a texture, grey and without alpha.
CRowIteratorBands LoadTextureImage(ICommandExecutionContext* context, const CString& name,
                                   const SColorSpecRGB& color_spec);
