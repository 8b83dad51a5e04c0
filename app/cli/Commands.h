#pragma once

namespace CLI {
class App;
}

// Each adds one subcommand: its options, its help, and what it does when it is chosen.
void AddListCommand(CLI::App& program);
void AddDescribeCommand(CLI::App& program);
void AddApplyCommand(CLI::App& program);
void AddEditCommand(CLI::App& program);
void AddGalleryCommand(CLI::App& program);
void AddBatchCommand(CLI::App& program);
void AddPresetCommand(CLI::App& program);
void AddResourcesCommand(CLI::App& program);
void AddHelpCommand(CLI::App& program);
