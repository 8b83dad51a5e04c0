#pragma once

// SIGINT, SIGTERM, SIGHUP and SIGQUIT ask the running job to stop; a second one ends the program at
// once, after removing what is unfinished. So does a time limit, with a second of grace.
namespace interruption {
// A hang-up that is ignored when the program starts stays ignored.
void Install();
// Asks the job to stop when this many seconds have passed; 0 is never.
void SetTimeLimit(double seconds);
bool Requested() noexcept;
// Why the job was asked to stop: 128 and the signal's number, or the status of a limit reached.
int ExitStatus();
bool TimedOut();
}  // namespace interruption
