#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

// A logon of the test's own, for this process and its children: an empty registry, no events, and
// a file that takes the debugger output.
class TemporaryLogon {
  public:
    TemporaryLogon() {
        std::string name = (std::filesystem::temp_directory_path() / "logon-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        folder_ = name;
        Set("XDG_CONFIG_HOME", "config");
        Set("XDG_RUNTIME_DIR", "");
        Set("CMDTEXTURE_DEBUG_OUTPUT", "debug-output");
    }
    TemporaryLogon(const TemporaryLogon&) = delete;
    TemporaryLogon& operator=(const TemporaryLogon&) = delete;
    ~TemporaryLogon() {
        for (const auto& [variable, value] : before_) {
            value.empty() ? unsetenv(variable) : setenv(variable, value.c_str(), 1);
        }
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    const std::filesystem::path& Folder() const { return folder_; }
    void WriteRegistry(const std::string& text) const {
        std::filesystem::create_directories(folder_ / "config/cmdtexture");
        std::ofstream(folder_ / "config/cmdtexture/registry.ini") << text;
    }
    // The names of the files that stand for events, of crashed processes too.
    std::vector<std::string> EventFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_ / "cmdtexture/events"))
            names.push_back(entry.path().filename().string());
        return names;
    }
    std::vector<std::string> DebugLines() const {
        std::vector<std::string> lines;
        std::ifstream in(folder_ / "debug-output");
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }

  private:
    void Set(const char* variable, const char* below) {
        const char* value = std::getenv(variable);
        before_[variable] = value ? value : "";
        setenv(variable, (folder_ / below).c_str(), 1);
    }

    std::filesystem::path folder_;
    std::map<const char*, std::string> before_;
};

// Another process, which runs `body` and then stays there until it is killed without a chance to
// clean up: at Crash() or at the end of this object. Its outcome shows in what it leaves behind.
class ChildProcess {
  public:
    // Returns when the body has run; throws when the child died in it.
    template <class Body>
    explicit ChildProcess(Body&& body) {
        int done[2];
        if (pipe(done) != 0 || (pid_ = fork()) < 0) throw std::runtime_error("no child process");
        if (pid_ == 0) {
            body();
            const bool told = write(done[1], "d", 1) == 1;
            while (told) pause();
            _exit(1);
        }
        close(done[1]);
        char byte = 0;
        const bool ran = read(done[0], &byte, 1) == 1;
        close(done[0]);
        if (!ran) {
            Crash();
            throw std::runtime_error("the child process died");
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess() { Crash(); }

    void Crash() {
        if (pid_ <= 0) return;
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }

  private:
    pid_t pid_ = -1;
};
