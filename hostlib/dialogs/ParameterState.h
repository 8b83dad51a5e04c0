#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "host/commands/IParameterRepository.h"
#include "host/core/RuntimeRandom.h"

// All parameter values of a repository at once.
namespace parameters {

using Values = std::vector<std::pair<std::int64_t, CString>>;
Values Capture(IParameterRepository& repository);
// Takes back values that were captured from the same repository.
void Restore(IParameterRepository& repository, const Values& values);

bool HasDefault(const IParameter& parameter);
// The default, or the nearest value of the range where a small canvas leaves the default out.
void SetDefault(IParameter& parameter);
// A number that is beyond the range becomes the nearest of it.
void BringIntoRange(IParameter& parameter);
// A value by chance within the parameter's range, every one as likely; where the range is long
// (sizes in pixels, say) small values are likelier. Texts stay.
void SetRandom(IParameter& parameter, CRuntimeRandom& random);
// One of 0 to count - 1, every one as likely.
std::size_t RandomIndex(std::size_t count, CRuntimeRandom& random);

}  // namespace parameters
