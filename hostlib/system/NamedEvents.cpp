#include "host/system/NamedEvents.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "host/core/CDescriptor.h"
#include "hostlib/system/ConfigFolders.h"

// An event is a file that lies in a folder of the user's own and is locked, shared, by every open
// handle; its length is 1 when it is signalled, else 0, which takes no disk space. The kernel drops
// the locks of a process that dies, and a file without locks is no event, whatever it holds.
// Whether there are locks is found out by taking the exclusive one for a moment, so all opening,
// making and closing happens under a lock on the folder itself. Locks belong to open descriptions
// of files, not to processes: threads exclude each other just as processes do.

namespace {

using std::chrono::steady_clock;

constexpr auto kLongestWait = std::chrono::milliseconds(200);

std::filesystem::path EventFolder() { return folders::UserRuntime() / "events"; }

// Opens a folder of this user, making it when it is missing. None when it is somebody else's or
// others may write there: whoever made it could lead us astray.
CDescriptor OpenOwnFolder(const std::filesystem::path& path) noexcept {
    mkdir(path.c_str(), 0700);
    CDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info {};
    const bool own = folder && fstat(folder.Get(), &info) == 0 && info.st_uid == geteuid() &&
                     (info.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    return own ? std::move(folder) : CDescriptor();
}

// The folder of the events, locked as long as this object lives; none when that cannot be had.
class CLockedFolder {
  public:
    explicit CLockedFolder(const std::filesystem::path& path) noexcept {
        if (!OpenOwnFolder(path.parent_path())) return;
        CDescriptor folder = OpenOwnFolder(path);
        if (folder && Lock(folder.Get())) folder_ = std::move(folder);
    }
    CLockedFolder(const CLockedFolder&) = delete;
    CLockedFolder& operator=(const CLockedFolder&) = delete;
    // Unlocked by hand: a child process forked meanwhile holds a copy of the descriptor.
    ~CLockedFolder() {
        if (folder_) flock(folder_.Get(), LOCK_UN);
    }

    explicit operator bool() const noexcept { return static_cast<bool>(folder_); }
    int Get() const noexcept { return folder_.Get(); }

  private:
    // The lock is held for microseconds, unless its holder was stopped: then do without the event
    // rather than hang. A decision asks for several events in a row, often on the thread of a
    // window: whoever has waited in vain once only tries, until a try succeeds.
    static bool Lock(int folder) noexcept {
        static std::atomic<bool> waited_in_vain = false;
        const auto deadline = steady_clock::now() + kLongestWait;
        while (flock(folder, LOCK_EX | LOCK_NB) != 0) {
            const bool busy = errno == EWOULDBLOCK || errno == EINTR;
            if (busy && !waited_in_vain && steady_clock::now() > deadline) waited_in_vain = true;
            if (!busy || waited_in_vain) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        waited_in_vain = false;
        return true;
    }

    CDescriptor folder_;
};

bool IsEventName(const std::string& name) {
    return !name.empty() && name.front() != '.' && name.find_first_of("/\\") == std::string::npos;
}

// The file of an event; none when there is none, or when `name` is not fit for one.
CDescriptor OpenFile(const CLockedFolder& folder, const std::string& name, int flags) {
    if (!folder || !IsEventName(name)) return CDescriptor();
    return CDescriptor(
        openat(folder.Get(), name.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | flags, 0600));
}

// Whether no handle is open on the file, which then is locked for this one alone. A lock that this
// description had is lost when others have one, too.
bool LockAlone(int file) noexcept { return flock(file, LOCK_EX | LOCK_NB) == 0; }
bool LockShared(int file) noexcept { return flock(file, LOCK_SH | LOCK_NB) == 0; }

// Whether the name in the folder still stands for the open file.
bool IsNameOf(int folder, const std::string& name, int file) noexcept {
    struct stat named {};
    struct stat opened {};
    return fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           fstat(file, &opened) == 0 && named.st_dev == opened.st_dev &&
           named.st_ino == opened.st_ino;
}

}  // namespace

struct SOpenEvent {
    std::filesystem::path path;  // of the folder that the event was opened in
    std::string name;
    CDescriptor file;
    pid_t owner = getpid();

    SOpenEvent(std::filesystem::path in, std::string event, CDescriptor opened)
        : path(std::move(in)), name(std::move(event)), file(std::move(opened)) {}
    SOpenEvent(const SOpenEvent&) = delete;
    SOpenEvent& operator=(const SOpenEvent&) = delete;
    // The last handle takes the file away. A forked copy leaves that to the handle it is a copy of.
    ~SOpenEvent() {
        if (getpid() != owner) return;
        const CLockedFolder folder(path);
        if (folder && LockAlone(file.Get()) && IsNameOf(folder.Get(), name, file.Get())) {
            unlinkat(folder.Get(), name.c_str(), 0);
        }
    }
};

CEventHandle::CEventHandle() noexcept = default;
CEventHandle::CEventHandle(std::unique_ptr<SOpenEvent> event) noexcept : event_(std::move(event)) {}
CEventHandle::CEventHandle(CEventHandle&& other) noexcept = default;
CEventHandle& CEventHandle::operator=(CEventHandle&& other) noexcept = default;
CEventHandle::~CEventHandle() = default;

bool CEventHandle::Set() noexcept { return event_ && ftruncate(event_->file.Get(), 1) == 0; }

bool CEventHandle::IsSignalled() const noexcept {
    struct stat info {};
    return event_ && fstat(event_->file.Get(), &info) == 0 && info.st_size > 0;
}

CEventHandle OpenEventW(const CString& name) {
    const std::filesystem::path path = EventFolder();
    std::string file_name = ToUtf8(name);
    const CLockedFolder folder(path);
    CDescriptor file = OpenFile(folder, file_name, 0);
    if (!file) return {};
    if (LockAlone(file.Get())) {  // left behind by a process that crashed
        unlinkat(folder.Get(), file_name.c_str(), 0);
        return {};
    }
    if (!LockShared(file.Get())) return {};
    return CEventHandle(std::make_unique<SOpenEvent>(path, std::move(file_name), std::move(file)));
}

SCreatedEvent CreateEventW(const CString& name) {
    const std::filesystem::path path = EventFolder();
    std::string file_name = ToUtf8(name);
    const CLockedFolder folder(path);
    CDescriptor file = OpenFile(folder, file_name, O_CREAT);
    if (!file) return {{}, ERROR_ACCESS_DENIED};
    const bool is_new = LockAlone(file.Get());
    const bool usable = (!is_new || ftruncate(file.Get(), 0) == 0) && LockShared(file.Get());
    if (!usable) return {{}, ERROR_ACCESS_DENIED};
    return {CEventHandle(std::make_unique<SOpenEvent>(path, std::move(file_name), std::move(file))),
            is_new ? 0 : ERROR_ALREADY_EXISTS};
}
