#pragma once

#include <functional>

#include "host/core/HostApi.h"

// How many threads may work at once for the calling one, itself included.
HOST_API int CoreCount();

// Runs work(0) on the calling thread and, as soon as cores are free, work(1) to work(threads - 1)
// on others; returns when all that have begun are done. work(0) must not wait for the others, which
// may begin late, and takes up nothing foreign meanwhile. What one of them throws, work(0)'s first,
// is thrown then; those that have not begun are left out.
HOST_API void OnAllCores(int threads, const std::function<void(int slot)>& work);
