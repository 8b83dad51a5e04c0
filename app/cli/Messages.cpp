#include "app/cli/Messages.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "hostlib/system/CFileError.h"

namespace messages {
namespace {

// One write a message keeps the lines of several processes apart.
void SayLine(std::string_view prefix, std::string_view text, std::string_view hint) noexcept {
    try {
        std::string line = std::string(prefix) + DisplayText(std::string(text)) + "\n";
        if (!hint.empty()) line += "hint: " + DisplayText(std::string(hint)) + "\n";
        Show(line);
    } catch (...) {  // no memory for the whole of it
        Show(prefix);
        Show(text);
        Show("\n");
    }
}

}  // namespace

void Open() noexcept {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
        // The lowest that is free is this one. Opened the wrong way, it fails as a closed one does.
        const int flags = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (open("/dev/null", flags) < 0) _exit(1);
    }
}

void Say(std::string_view text) noexcept { SayLine("cmdtexture: ", text, {}); }
void Warn(std::string_view text) noexcept { SayLine("cmdtexture: warning: ", text, {}); }
void Error(std::string_view text, std::string_view hint) noexcept {
    SayLine("cmdtexture: error: ", text, hint);
}

void Show(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace messages
