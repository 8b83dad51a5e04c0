#pragma once

#include <cstdint>

// The bytes of memory that this process can have: the machine's, or less by the limit of its
// control group or of its address space.
std::uint64_t AvailableMemory();
