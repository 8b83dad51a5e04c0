#pragma once

#include <span>

#include "host/commands/IComponentExporter.h"
#include "module/CommandDescription.h"

// One command of the module: what it is and what makes it.
struct SCommandEntry {
    const SCommandDescription* description;
    ComponentFactory factory;
};

// The fourteen commands, in the order in which they are registered.
std::span<const SCommandEntry> AllCommands();
