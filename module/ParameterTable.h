#pragma once

#include <span>

#include "host/commands/ICommandExecutionContext.h"
#include "host/commands/IParameterRepository.h"
#include "module/CommandDescription.h"

// Defines the rows in the repository (null: they are made and dropped). Ranges that follow the
// document take it from the context; without a document a side counts 32767. Succeeds whatever
// single definitions answer.
CErrorAutoThrow DefineParameterTable(std::span<const SParameterRow> rows,
                                     ICommandExecutionContext* context,
                                     IParameterRepository* repository);

// The editor's range scale: 1, or more (or less) when its setting is on.
double RangeScale();
