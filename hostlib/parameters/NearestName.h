#pragma once

#include <string>
#include <vector>

#include "host/core/HostApi.h"

// The one of `names` that `wanted` was most likely meant to be (fewest letters changed, letter case
// ignored); empty when none is near.
HOST_API std::string NearestName(const std::string& wanted, const std::vector<std::string>& names);
// "did you mean NAME?" for the nearest of the names; empty when none is near.
HOST_API std::string DidYouMean(const std::string& wanted, const std::vector<std::string>& names);
// Equality of names, ASCII letter case ignored.
HOST_API bool SameName(const std::string& a, const std::string& b);
// What a name for people is told by: its letters and digits, in small letters, whatever stands
// between them, so that "Fine Leather", "fine-leather" and "FineLeather" are the same. Capitals
// with accents, as far as the languages of Western Europe have them, become small as well.
HOST_API std::string LooseName(const std::string& name);
