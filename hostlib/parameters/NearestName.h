#pragma once

#include <string>
#include <vector>

#include "host/core/HostApi.h"

// The one of `names` that `wanted` was most likely meant to be (fewest letters changed, letter case
// ignored); empty when none is near.
HOST_API std::string NearestName(const std::string& wanted, const std::vector<std::string>& names);
// Equality of names, ASCII letter case ignored.
HOST_API bool SameName(const std::string& a, const std::string& b);
