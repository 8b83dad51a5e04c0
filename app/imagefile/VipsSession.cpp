#include "app/imagefile/VipsSession.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <shared_mutex>
#include <stdexcept>
#include <string_view>

namespace imagefile {

namespace {

thread_local CVipsWarnings* collector = nullptr;

std::string OneLine(std::string_view text) {
    text = text.substr(0, text.find('\n'));
    return std::string(text);
}

// The library loads whatever decoders it finds below its installation, which a variable of the
// environment can move. Ours are all built in: where there is no folder, nothing is loaded.
int StartWithoutModules() {
    constexpr const char* kFolder = "VIPSHOME";
    const char* before = std::getenv(kFolder);
    const std::optional<std::string> kept =
        before ? std::optional<std::string>(before) : std::nullopt;
    setenv(kFolder, "/dev/null", 1);
    const int result = vips_init("cmdtexture");
    kept ? setenv(kFolder, kept->c_str(), 1) : unsetenv(kFolder);
    return result;
}

// Who wants to be alone holds the turnstile, so that no new users pass while it waits.
std::mutex turnstile;
std::shared_mutex users;

// GLib ends the process when it gets no memory or no thread: it shall end as for want of memory.
void EndForWant(const char* /*domain*/, GLogLevelFlags /*level*/, const char* /*text*/,
                void* /*data*/) {
    try {
        throw std::bad_alloc();
    } catch (...) {
        std::terminate();
    }
}

}  // namespace

void StartVips() {
    static std::once_flag started;
    std::call_once(started, [] {
        constexpr int kFatal = G_LOG_LEVEL_ERROR | G_LOG_FLAG_FATAL | G_LOG_FLAG_RECURSION;
        g_log_set_handler("GLib", static_cast<GLogLevelFlags>(kFatal), &EndForWant, nullptr);
        if (StartWithoutModules() != 0) throw std::runtime_error(TakeVipsError());
        vips_block_untrusted_set(TRUE);
        vips_cache_set_max(0);
        // Rows come from memory; more threads than this would only wait for the encoder.
        vips_concurrency_set(1);
        g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK),
                          &CVipsWarnings::Receive, nullptr);
    });
}

CVipsUse::CVipsUse() {
    turnstile.lock();
    turnstile.unlock();
    users.lock_shared();
}

CVipsUse::~CVipsUse() { users.unlock_shared(); }

CVipsAlone::CVipsAlone() {
    turnstile.lock();
    users.lock();
    vips_error_clear();
}

CVipsAlone::~CVipsAlone() {
    users.unlock();
    turnstile.unlock();
}

std::string TakeVipsError() {
    std::string text = OneLine(vips_error_buffer());
    vips_error_clear();
    const std::size_t colon = text.find(": ");
    if (colon != std::string::npos && text.find(' ') > colon) text.erase(0, colon + 2);
    return text;
}

TVips<VipsImage> OpenVips(ENKind kind, int descriptor, int page, bool strict) {
    if (lseek(descriptor, 0, SEEK_SET) != 0) return nullptr;
    const TVips<VipsSource> source(vips_source_new_from_descriptor(descriptor));
    if (!source) return nullptr;
    const auto load = [&](auto loader, auto... more) {
        VipsImage* opened = nullptr;
        const int failed =
            loader(source.get(), &opened, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                   strict ? VIPS_FAIL_ON_WARNING : VIPS_FAIL_ON_NONE, more..., nullptr);
        return TVips<VipsImage>(failed ? nullptr : opened);
    };
    switch (kind) {
        case ENKind::Png:
            return load(vips_pngload_source);
        case ENKind::Jpeg:
            return load(vips_jpegload_source);
        case ENKind::Tiff:
            return load(vips_tiffload_source, "page", page - 1);
        case ENKind::Webp:
            return load(vips_webpload_source, "page", page - 1);
    }
    return nullptr;
}

CVipsWarnings::CVipsWarnings() { collector = this; }

CVipsWarnings::~CVipsWarnings() { collector = nullptr; }

void CVipsWarnings::Receive(const char* /*domain*/, GLogLevelFlags level, const char* text,
                            void* /*data*/) {
    if (!collector || (level & (G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL)) == 0) return;
    auto& texts = collector->texts_;
    std::string line = OneLine(text);
    const bool is_known = std::find(texts.begin(), texts.end(), line) != texts.end();
    if (!line.empty() && !is_known) texts.push_back(std::move(line));
}

std::vector<std::string> CVipsWarnings::TakeNew() {
    std::vector<std::string> fresh(texts_.begin() + static_cast<std::ptrdiff_t>(taken_),
                                   texts_.end());
    taken_ = texts_.size();
    return fresh;
}

}  // namespace imagefile
