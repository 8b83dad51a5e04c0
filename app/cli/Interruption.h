#pragma once

// SIGINT and SIGTERM ask the running job to stop; a second one ends the program at once, after
// removing what is unfinished.
namespace interruption {
void Install();
bool Requested();
// 130 after SIGINT, 143 after SIGTERM.
int ExitStatus();
}  // namespace interruption
