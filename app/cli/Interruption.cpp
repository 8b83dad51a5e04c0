#include "app/cli/Interruption.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "app/imagefile/COutputFile.h"

namespace interruption {
namespace {

std::atomic<int> g_signal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "set from a signal handler");

extern "C" void OnSignal(int number) {
    if (g_signal.exchange(number) == 0) return;
    imagefile::COutputFile::RemoveAllPending();
    _exit(128 + number);
}

}  // namespace

void Install() {
    struct sigaction action {};
    action.sa_handler = &OnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // A reader that went away, or a file-size limit, is an error of the write that meets it.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
}

bool Requested() { return g_signal != 0; }
int ExitStatus() { return 128 + g_signal; }

}  // namespace interruption
