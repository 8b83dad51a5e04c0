#include "hostlib/system/COutputFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <set>
#include <tuple>
#include <utility>

#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace {

constexpr const char* kTemporaryFormat = ".cmdtexture-%016llx.part";
constexpr const char* kTemporaryPattern = ".cmdtexture-????????????????.part";

// The temporary names in use, in a form that a signal handler can walk. A name is registered
// before its file is made, so that there is no moment in which a file would be left behind.
struct SPendingName {
    enum : int { kFree, kClaimed, kLive };
    std::atomic<int> state{kFree};
    int folder = -1;
    char text[48] = {};
};
SPendingName pending_names[64];
static_assert(std::atomic<int>::is_always_lock_free);

const char* RegisterName(int folder) {
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) return nullptr;
    for (SPendingName& name : pending_names) {
        int expected = SPendingName::kFree;
        if (!name.state.compare_exchange_strong(expected, SPendingName::kClaimed)) continue;
        name.folder = folder;
        std::snprintf(name.text, sizeof name.text, kTemporaryFormat,
                      static_cast<unsigned long long>(number));
        name.state = SPendingName::kLive;
        return name.text;
    }
    errno = EMFILE;
    return nullptr;
}

void ForgetName(const char* text) {
    for (SPendingName& name : pending_names) {
        if (name.text == text) name.state = SPendingName::kFree;
    }
}

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& what,
                         std::string hint = {}) {
    throw CFileError(file, what, std::move(hint));
}

CDescriptor OpenFolder(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    CDescriptor opened(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!opened) {
        Refuse(file,
               Tr("the folder {} cannot be used: {}", DisplayText(folder), SystemText(errno)));
    }
    if (faccessat(opened.Get(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
        Refuse(file, Tr("the folder {} cannot be written to: {}", DisplayText(folder),
                        SystemText(errno)));
    }
    return opened;
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// What lies under the name and may be replaced; nothing when the name is free. Refuses the rest.
std::optional<struct stat> CheckName(int folder, const std::filesystem::path& file,
                                     const SOutputRules& rules) {
    const std::string name = file.filename().native();
    if (name.empty() || name == "." || name == "..") Refuse(file, Tr("is the name of a folder"));
    struct stat found = {};
    if (fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) return std::nullopt;
        Refuse(file, Tr("cannot be written: {}", SystemText(errno)));
    }
    // A link is judged by itself and by what it leads to, which may be nothing.
    const bool is_link = S_ISLNK(found.st_mode);
    struct stat behind = found;
    const bool leads_somewhere = !is_link || fstatat(folder, name.c_str(), &behind, 0) == 0;
    if (leads_somewhere && S_ISDIR(behind.st_mode)) Refuse(file, Tr("is a folder"));
    if (leads_somewhere && !S_ISREG(behind.st_mode)) {
        Refuse(file, Tr("is a device or a pipe, which is never replaced"));
    }
    if (!rules.overwrite) {
        struct stat input = {};
        if (leads_somewhere && !rules.input.empty() && stat(rules.input.c_str(), &input) == 0 &&
            IsSameFile(input, behind)) {
            Refuse(file, Tr("is the input file"), Tr("use --overwrite, or another name"));
        }
        Refuse(file, is_link ? Tr("exists, a symbolic link") : Tr("exists"),
               Tr("use --overwrite, or another name"));
    }
    if (!is_link && faccessat(folder, name.c_str(), W_OK, AT_EACCESS) != 0) {
        Refuse(file, Tr("cannot be replaced: {}", SystemText(errno)));
    }
    return found;
}

std::string PathOf(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

}  // namespace

void COutputFile::Check(const std::filesystem::path& file, const SOutputRules& rules) {
    if (rules.stream >= 0) return;
    CheckName(OpenFolder(file).Get(), file, rules);
}

COutputFile::COutputFile(std::filesystem::path file, const SOutputRules& rules, bool unnamed)
    : file_(std::move(file)), rules_(rules), name_(file_.filename().native()) {
    if (rules_.stream >= 0) {
        CreateForStream();
        return;
    }
    folder_ = OpenFolder(file_);
    replaced_ = CheckName(folder_.Get(), file_, rules_);
    // The umask narrows the mode. What replaces a private file is private from its first byte.
    const mode_t mode = replaced_ && S_ISREG(replaced_->st_mode) ? 0600 : 0666;
    RemoveStale();
    if (!unnamed || !CreateUnnamed(mode)) CreateNamed(mode);
}

COutputFile::~COutputFile() {
    if (!temporary_) return;
    unlinkat(folder_.Get(), temporary_, 0);
    ForgetName(temporary_);
}

void COutputFile::RemoveAllPending() noexcept {
    for (const SPendingName& name : pending_names) {
        if (name.state == SPendingName::kLive) unlinkat(name.folder, name.text, 0);
    }
}

// A file without a name vanishes with the process, however that ends. It can only be named later
// by way of /proc.
bool COutputFile::CreateUnnamed(mode_t mode) {
    data_ = CDescriptor(openat(folder_.Get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    if (data_ && access(PathOf(data_.Get()).c_str(), F_OK) != 0) data_ = CDescriptor();
    return static_cast<bool>(data_);
}

// Where a file system has no locks, none of its files will ever be taken for stale.
bool COutputFile::LockNamed() {
    struct stat held = {}, named = {};
    std::ignore = flock(data_.Get(), LOCK_EX | LOCK_NB);
    return temporary_ && fstat(data_.Get(), &held) == 0 &&
           fstatat(folder_.Get(), temporary_, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           IsSameFile(held, named);
}

// Another process may take the file for stale before it is locked; then one is made anew.
void COutputFile::CreateNamed(mode_t mode) {
    constexpr int kFlags = O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC;
    constexpr int kAttempts = 100;
    int error = EAGAIN;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        temporary_ = RegisterName(folder_.Get());
        if (temporary_) data_ = CDescriptor(openat(folder_.Get(), temporary_, kFlags, mode));
        if (data_ && LockNamed()) return;
        error = data_ ? EAGAIN : errno;
        if (temporary_) ForgetName(std::exchange(temporary_, nullptr));
        if (!data_) break;
    }
    FailWriting(error);
}

// Once for each folder: a folder may hold very many files.
void COutputFile::RemoveStale() const {
    static std::mutex mutex;
    static std::set<std::array<std::uint64_t, 4>> seen;  // by number and birth: numbers come again
    struct statx folder = {};
    constexpr unsigned kWanted = STATX_INO | STATX_BTIME;
    if (statx(folder_.Get(), "", AT_EMPTY_PATH, kWanted, &folder) != 0) return;
    {
        const std::lock_guard lock(mutex);
        const std::uint64_t device =
            std::uint64_t{folder.stx_dev_major} << 32 | folder.stx_dev_minor;
        const auto seconds = static_cast<std::uint64_t>(folder.stx_btime.tv_sec);
        if (!seen.insert({device, folder.stx_ino, seconds, folder.stx_btime.tv_nsec}).second) {
            return;
        }
    }
    DIR* listing = fdopendir(openat(folder_.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    while (const dirent* entry = listing ? readdir(listing) : nullptr) {
        if (fnmatch(kTemporaryPattern, entry->d_name, 0) != 0) continue;
        constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        const CDescriptor left(openat(folder_.Get(), entry->d_name, kFlags));
        struct stat found = {};
        if (left && fstat(left.Get(), &found) == 0 && S_ISREG(found.st_mode) &&
            flock(left.Get(), LOCK_EX | LOCK_NB) == 0) {
            unlinkat(folder_.Get(), entry->d_name, 0);
        }
    }
    if (listing) closedir(listing);
}

// The bytes gather where they take no memory, if that can be had.
void COutputFile::CreateForStream() {
    std::error_code none;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(none);
    data_ = CDescriptor(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!data_) data_ = CDescriptor(memfd_create("output", MFD_CLOEXEC));
    if (!data_) FailWriting(errno);
}

void COutputFile::CopyToStream(const std::function<bool()>& stops) {
    std::array<std::uint8_t, 65536> bytes = {};
    for (off_t at = 0;;) {
        const ssize_t got = pread(data_.Get(), bytes.data(), bytes.size(), at);
        if (got < 0) FailWriting(errno);
        if (got == 0) return;
        at += got;
        for (ssize_t done = 0; done < got;) {
            const ssize_t written = write(rules_.stream, &bytes[static_cast<std::size_t>(done)],
                                          static_cast<std::size_t>(got - done));
            const bool goes_on = written >= 0 || (errno == EINTR && !(stops && stops()));
            if (!goes_on) Refuse(file_, Tr("cannot be written: {}", SystemText(errno)));
            done += std::max<ssize_t>(written, 0);
        }
    }
}

void COutputFile::Write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(data_.Get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) FailWriting(errno);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void COutputFile::FailWriting(int error) const {
    Refuse(file_, Tr("cannot be written: {}", SystemText(error)), Tr("nothing was left behind"));
}

void COutputFile::FailPublishing(int error) const {
    if (error == EEXIST) Refuse(file_, Tr("exists"), Tr("use --overwrite, or another name"));
    FailWriting(error);
}

// Failures are no reason to lose the result: it then stays narrower than what it replaces.
void COutputFile::KeepPermissions() {
    if (!replaced_ || !S_ISREG(replaced_->st_mode)) return;
    if (replaced_->st_uid != geteuid() || replaced_->st_gid != getegid()) {
        std::ignore = fchown(data_.Get(), replaced_->st_uid, replaced_->st_gid);
    }
    std::ignore = fchmod(data_.Get(), replaced_->st_mode & 0777);
}

void COutputFile::Publish(const std::function<bool()>& stops) {
    if (rules_.stream >= 0) return CopyToStream(stops);
    KeepPermissions();
    if (fsync(data_.Get()) != 0) FailWriting(errno);
    rules_.overwrite ? PublishOver() : PublishNew();
    if (temporary_) ForgetName(std::exchange(temporary_, nullptr));
    // The new name is durable with its folder. The file has it, whatever comes of that.
    const CDescriptor folder(openat(folder_.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) std::ignore = fsync(folder.Get());
}

// Never replaces anything, even what came into being after the check.
void COutputFile::PublishNew() {
    const int folder = folder_.Get();
    if (!temporary_) {
        const std::string unnamed = PathOf(data_.Get());
        if (linkat(AT_FDCWD, unnamed.c_str(), folder, name_.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            FailPublishing(errno);
        }
        return;
    }
    if (renameat2(folder, temporary_, folder, name_.c_str(), RENAME_NOREPLACE) == 0) return;
    // Some file systems do not know that flag; a hard link does not replace either.
    if (errno != EINVAL && errno != ENOSYS) FailPublishing(errno);
    if (linkat(folder, temporary_, folder, name_.c_str(), 0) != 0) FailPublishing(errno);
    unlinkat(folder, temporary_, 0);
}

void COutputFile::PublishOver() {
    const int folder = folder_.Get();
    if (!temporary_) {
        std::ignore = flock(data_.Get(), LOCK_EX | LOCK_NB);
        temporary_ = RegisterName(folder);
        const std::string unnamed = PathOf(data_.Get());
        if (!temporary_ ||
            linkat(AT_FDCWD, unnamed.c_str(), folder, temporary_, AT_SYMLINK_FOLLOW) != 0) {
            FailPublishing(errno);
        }
    }
    if (renameat(folder, temporary_, folder, name_.c_str()) != 0) FailPublishing(errno);
}
