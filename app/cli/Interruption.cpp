#include "app/cli/Interruption.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cmath>

#include "app/cli/CliError.h"
#include "hostlib/system/COutputFile.h"

namespace interruption {
namespace {

std::atomic<int> g_signal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "set from a signal handler");

int StatusOf(int number) {
    return number == SIGALRM ? static_cast<int>(EExit::Limit) : 128 + number;
}

extern "C" void OnSignal(int number) {
    if (g_signal.exchange(number) == 0) return;
    COutputFile::RemoveAllPending();
    _exit(StatusOf(number));
}

}  // namespace

void Install() {
    struct sigaction action {};
    action.sa_handler = &OnSignal;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM, SIGQUIT, SIGALRM}) {
        sigaction(number, &action, nullptr);
    }
    struct sigaction hang_up {};
    sigaction(SIGHUP, nullptr, &hang_up);
    if (hang_up.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
    // A reader that went away, or a file-size limit, is an error of the write that meets it.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
}

void SetTimeLimit(double seconds) {
    if (seconds <= 0) return;
    const double whole = std::floor(seconds);
    const itimerval timer = {
        .it_interval = {.tv_sec = 1, .tv_usec = 0},
        .it_value = {.tv_sec = static_cast<time_t>(whole),
                     .tv_usec = static_cast<suseconds_t>((seconds - whole) * 1e6)}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

bool Requested() noexcept { return g_signal != 0; }
int ExitStatus() { return StatusOf(g_signal); }
bool TimedOut() { return g_signal == SIGALRM; }

}  // namespace interruption
