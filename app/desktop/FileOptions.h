#pragma once

#include <vector>

#include "app/desktop/IDesktop.h"

class QWidget;

// Asks how a file is to be written; false when the user thinks better of it. Without options there
// is nothing to ask.
bool AskFileOptions(QWidget* parent, std::vector<SFileOption>& options);
