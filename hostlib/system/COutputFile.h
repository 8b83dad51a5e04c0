#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "host/core/CDescriptor.h"
#include "host/core/HostApi.h"

struct SOutputRules {
    // Whether an existing file is replaced. Its permissions are kept. A symbolic link is replaced
    // itself; what it points to is never touched.
    bool overwrite = false;
    // The file that is being read, if any: naming it as output needs `overwrite` too, and gives a
    // message of its own.
    std::filesystem::path input;
    // A pipe or other open file that gets the bytes, once they are complete, instead of a file of
    // the name, which then stands in messages only; negative is none.
    int stream = -1;
};

// A file that exists under its name only once it is complete. Until Publish, its bytes lie in a
// file without a name, or where the file system has no such thing, in one named
// ".cmdtexture-*.part" beside it; destruction removes it. Such files that a killed process has left
// in the folder are removed by the next one that writes there; the lock that their writer holds
// tells them from those at work. All failures are thrown as CFileError.
class HOST_API COutputFile {
  public:
    // Refuses what Check refuses, then creates the file. `unnamed` may be set to false to do
    // without nameless files.
    COutputFile(std::filesystem::path file, const SOutputRules& rules, bool unnamed = true);
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    // Whether the file may be written under these rules: the folder exists and can be written to,
    // nothing that must be kept is in the way.
    static void Check(const std::filesystem::path& file, const SOutputRules& rules);

    // Open for reading and writing.
    int Descriptor() const { return data_.Get(); }
    // Appends bytes at the descriptor's position.
    void Write(std::span<const std::uint8_t> bytes);
    // Reports a write to the descriptor that failed with this `errno`.
    [[noreturn]] void FailWriting(int error) const;
    // Makes the bytes durable, then gives the file its name in one step. To a stream the bytes are
    // copied; a signal that arrives meanwhile ends that when `stops` answers true.
    void Publish(const std::function<bool()>& stops = {});

    // Removes the unfinished files of all threads. Async-signal-safe; for a handler that is about
    // to end the process.
    static void RemoveAllPending() noexcept;

  private:
    void CreateForStream();
    bool CreateUnnamed(mode_t mode);
    void CreateNamed(mode_t mode);
    bool LockNamed();
    void RemoveStale() const;
    void CopyToStream(const std::function<bool()>& stops);
    void KeepPermissions();
    void PublishNew();
    void PublishOver();
    [[noreturn]] void FailPublishing(int error) const;

    std::filesystem::path file_;
    SOutputRules rules_;
    std::string name_;  // of the file in its folder
    CDescriptor folder_;
    CDescriptor data_;
    std::optional<struct stat> replaced_;
    const char* temporary_ = nullptr;  // the registered name, null while the file has none
};
