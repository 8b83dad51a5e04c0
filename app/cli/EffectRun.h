#pragma once

#include <string>

#include "app/cli/CProgress.h"
#include "app/resources/CFileResourceLibrary.h"
#include "hostlib/commands/CDocument.h"
#include "hostlib/job/CEffectModule.h"

// Runs a prepared command on the document of its context, which uses the library, and answers the
// picture. An effect that reports an error ends the program with its code, one that was cancelled
// with CInterrupted; so does a pattern or texture that cannot be read.
CRowIteratorBands RunEffect(CCmdEffect& command, CExecutionContext& context,
                            const CFileResourceLibrary& library);

// Says what happened, once, when an effect works on 16-bit pictures with 8-bit precision.
void WarnOfPrecision(const CCmdEffect& command, CNPixelFormat format);
