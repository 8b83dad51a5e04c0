#include "app/cli/Messages.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <nlohmann/json.hpp>

#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace messages {
namespace {

using nlohmann::ordered_json;

std::atomic<bool> g_uses_json = false;
std::mutex g_mutex;  // guards what follows
ordered_json g_warnings = ordered_json::array();

const char* KindOf(int status) {
    constexpr const char* kKinds[] = {"done",        "fault",  "usage", "unreadable",
                                      "unsupported", "output", "limit", "effect"};
    constexpr int kCount = static_cast<int>(std::size(kKinds));
    return status >= 0 && status < kCount ? kKinds[status] : "interrupted";
}

ordered_json ToJson(const char* severity, std::string_view text, std::string_view hint) {
    return {{"severity", severity},
            {"message", text},
            {"hint", hint.empty() ? ordered_json() : ordered_json(hint)}};
}

void ShowLine(const ordered_json& message) {
    // File names are bytes: what is not UTF-8 in them is replaced.
    Show(message.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n');
}

// One write a message keeps the lines of several processes apart.
void SayLine(const std::string& prefix, std::string_view text, std::string_view hint) {
    std::string line = "cmdtexture: " + prefix + DisplayText(std::string(text)) + "\n";
    if (!hint.empty()) line += Tr("hint: ") + DisplayText(std::string(hint)) + "\n";
    Show(line);
}

// Runs `say`; without the memory for it, the text alone is shown.
template <class Function>
void WhateverHappens(std::string_view text, Function&& say) noexcept {
    try {
        say();
    } catch (...) {
        Show("cmdtexture: ");
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

void UseJson() noexcept { g_uses_json = true; }
bool UsesJson() noexcept { return g_uses_json; }

void Say(std::string_view text) noexcept {
    WhateverHappens(text, [&] {
        if (g_uses_json) return ShowLine(ToJson("note", text, {}));
        SayLine({}, text, {});
    });
}

void Warn(std::string_view text) noexcept {
    WhateverHappens(text, [&] {
        const ordered_json warning = ToJson("warning", text, {});
        {
            const std::lock_guard lock(g_mutex);
            g_warnings.push_back(warning);
        }
        if (g_uses_json) return ShowLine(warning);
        SayLine(Tr("warning: "), text, {});
    });
}

void Error(int status, std::string_view text, std::string_view hint) noexcept {
    WhateverHappens(text, [&] {
        if (g_uses_json) return ShowLine(ErrorToJson(status, text, hint));
        SayLine(Tr("error: "), text, hint);
    });
}

ordered_json Warnings() {
    const std::lock_guard lock(g_mutex);
    return g_warnings;
}

ordered_json ErrorToJson(int status, std::string_view text, std::string_view hint) {
    ordered_json error = ToJson("error", text, hint);
    error["status"] = status;
    error["kind"] = KindOf(status);
    return error;
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
