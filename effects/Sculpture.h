#pragma once

#include "host/commands/ICommandExecutionContext.h"
#include "host/graphics/CIoSculptureEffect.h"

// The image of a pattern of the context's library, without alpha; unattached when it cannot be had.
CRowIteratorBands LoadPatternImage(ICommandExecutionContext* context, const CString& name);

// Carves the image into the pattern (unattached: a plain material), where the mask (may be null)
// is white. Errors are those of the sculpture operation.
CErrorAutoThrow ApplySculpture(CStatusControl* status, const CRowIteratorBands& source,
                               CRowIteratorBands& destination, const CRowIterator* mask,
                               const CRowIteratorBands& pattern, const CSculptureSettings& settings,
                               const SColorSpecRGB& color_spec);
