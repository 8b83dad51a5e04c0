#include "host/system/DebugOutput.h"

#include <fcntl.h>
#include <signal.h>
#include <syslog.h>

#include <cstdlib>
#include <string>

#include "host/core/CDescriptor.h"
#include "host/core/CString.h"

namespace {

// Keeps a pipe that nobody reads any more from ending the process: the signal that a write on it
// raises is blocked, on this thread, and taken back unless it was pending before.
class CBrokenPipes {
  public:
    CBrokenPipes() {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        was_pending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    CBrokenPipes(const CBrokenPipes&) = delete;
    CBrokenPipes& operator=(const CBrokenPipes&) = delete;
    ~CBrokenPipes() {
        constexpr timespec kNow{};
        if (!was_pending_) sigtimedwait(&pipe_, nullptr, &kNow);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

  private:
    sigset_t pipe_{}, before_{};
    bool was_pending_ = false;
};

// One write on a file opened for appending is what keeps the lines of several processes apart. A
// pipe that nobody reads must not stop the program.
bool AppendTo(const char* path, const std::string& line) {
    const CBrokenPipes unheard;
    const CDescriptor file(
        open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600));
    return file && write(file.Get(), line.data(), line.size()) >= 0;
}

}  // namespace

void OutputDebugStringW(const wchar_t* text) {
    std::string line = ToUtf8(text);
    if (line.empty() || line.back() != '\n') line += '\n';
    const char* path = std::getenv("CMDTEXTURE_DEBUG_OUTPUT");
    if (path && *path && AppendTo(path, line)) return;
    syslog(LOG_USER | LOG_DEBUG, "%s", line.c_str());
}
