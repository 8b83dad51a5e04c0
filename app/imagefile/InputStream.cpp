#include "app/imagefile/InputStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

#include "app/imagefile/CImageFileError.h"
#include "app/imagefile/FileKinds.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

// On disk, if that can be had: a picture takes enough memory once it is decoded.
CDescriptor NamelessFile() {
    std::error_code none;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(none);
    CDescriptor file(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    return file ? std::move(file) : CDescriptor(memfd_create("input", MFD_CLOEXEC));
}

class CGatherer {
  public:
    CGatherer(const std::filesystem::path& file, std::uint64_t largest,
              const std::function<bool()>& stops)
        : file_(file == kStandardStream ? Tr("standard input") : file.string()),
          largest_(largest),
          stops_(stops),
          gathered_(NamelessFile()) {
        if (!gathered_) FailReading();
        if (file != kStandardStream) {
            // An opening that waits could not be stopped; a pipe without a writer yet has nothing.
            own_ = CDescriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
            if (!own_) FailReading();
        }
    }

    CDescriptor Gather() {
        std::vector<std::uint8_t> bytes(1 << 18);
        std::uint64_t total = 0;
        while (const std::size_t got = Read(bytes)) {
            Append(std::span(bytes).first(got));
            total += got;
            if (total > largest_) {
                throw CImageFileError(ENFault::Limit, file_, Tr("has more than {} bytes", largest_),
                                      Tr("--max-pixels tells how large a picture may be"));
            }
            if (total >= kContentBytes && !is_known_) Judge();
        }
        return std::move(gathered_);
    }

  private:
    [[noreturn]] void FailReading() const {
        throw CImageFileError(ENFault::Unreadable, file_,
                              Tr("cannot be read: {}", SystemText(errno)));
    }

    // Some bytes; none at the end.
    std::size_t Read(std::span<std::uint8_t> to) const {
        const int from = own_ ? own_.Get() : STDIN_FILENO;
        constexpr int kMilliseconds = 100;
        for (;;) {
            if (stops_()) throw CImageFileError(ENFault::Cancelled, file_, Tr("cancelled"));
            pollfd waits = {from, POLLIN, 0};
            const int ready = poll(&waits, 1, kMilliseconds);
            if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
            const ssize_t got = read(from, to.data(), to.size());
            if (got >= 0) return static_cast<std::size_t>(got);
            if (errno != EINTR && errno != EAGAIN) FailReading();
        }
    }

    void Append(std::span<const std::uint8_t> bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = write(gathered_.Get(), bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) {
                throw CImageFileError(ENFault::Limit, file_,
                                      Tr("cannot be gathered: {}", SystemText(errno)));
            }
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        }
    }

    // What is no picture may have no end: its reading fails as soon as that shows.
    void Judge() {
        std::uint8_t first[kContentBytes] = {};
        is_known_ = pread(gathered_.Get(), first, sizeof first, 0) == sizeof first &&
                    KindByContent(first).name != nullptr;
        if (is_known_) return;
        throw CImageFileError(ENFault::Unsupported, file_, Tr("is not an image of a known kind"),
                              Tr("PNG, JPEG, TIFF and WebP can be read"));
    }

    std::filesystem::path file_;
    std::uint64_t largest_;
    const std::function<bool()>& stops_;
    CDescriptor gathered_;
    CDescriptor own_;
    bool is_known_ = false;
};

}  // namespace

bool IsStream(const std::filesystem::path& file) {
    struct stat status = {};
    return file == kStandardStream ||
           (stat(file.c_str(), &status) == 0 && S_ISFIFO(status.st_mode));
}

CDescriptor GatherStream(const std::filesystem::path& file, std::uint64_t largest,
                         const std::function<bool()>& stops) {
    return CGatherer(file, largest, stops).Gather();
}

}  // namespace imagefile
