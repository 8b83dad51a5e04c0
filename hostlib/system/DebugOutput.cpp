#include "host/system/DebugOutput.h"

#include <fcntl.h>
#include <syslog.h>

#include <cstdlib>
#include <string>

#include "host/core/CString.h"
#include "hostlib/system/CDescriptor.h"

namespace {

// One write on a file opened for appending is what keeps the lines of several processes apart. A
// pipe that nobody reads must not stop the program.
bool AppendTo(const char* path, const std::string& line) {
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
