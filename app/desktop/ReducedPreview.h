#pragma once

#include "hostlib/windowing/IToolkit.h"

// Makes a snapshot that is to run on a picture reduced by 2^level look as the whole picture will:
// parameters that count pixels shrink with it, and so does the canvas. `source` and `selection`
// (unattached for none) are already reduced.
void ReduceSnapshot(SPreviewSnapshot& snapshot, int level, const CRowIteratorBands& source,
                    const CRowIterator& selection);
