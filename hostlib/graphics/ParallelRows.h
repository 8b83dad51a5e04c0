#pragma once

#include <functional>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/HostApi.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/IRowWorkers.h"

// Runs work(first, last) for blocks [first, last) that cover the rows 0 to rows - 1, each row in
// exactly one block of `block` rows (the last one may be shorter), on all cores and in any order.
// A result is therefore the same for any number of threads when a block's work depends on nothing
// but its rows. The rows are one run of progress of `status` (may be null), which is asked and told
// on the calling thread only, after each block that this thread works on: give a block no more than
// a few milliseconds of work and cancelling is answered at once. Error 100 when the user cancelled,
// the work's own error when it throws one; some blocks have then not run. May be called by several
// threads at once, and from inside a block.
CErrorAutoThrow ForEachRowBlock(CStatusControl* status, int rows, int block,
                                const std::function<void(int first, int last)>& work);

// All cores as a service for the module.
HOST_API IRowWorkers& HostRowWorkers();
