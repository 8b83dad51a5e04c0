#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "app/imagefile/CImageFile.h"
#include "support/Pictures.h"

extern char** environ;

// Runs the program in a folder of the test's own, with a home of its own.
class Program {
  public:
    Program() : folder_(std::filesystem::path(::testing::TempDir()) / UniqueName()) {
        std::filesystem::create_directories(folder_);
        setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
        setenv("XDG_DATA_HOME", (folder_ / "data").c_str(), 1);
        setenv("XDG_CACHE_HOME", (folder_ / "cache").c_str(), 1);
        setenv("LC_ALL", "C.UTF-8", 1);
    }
    ~Program() { std::filesystem::remove_all(folder_); }

    struct Result {
        int status = -1;
        std::string out, err;
    };

    // What lies behind standard input, output and error; an empty text closes it.
    using Streams = std::array<std::string, 3>;
    Streams Captured() const { return {"/dev/null", Path("stdout"), Path("stderr")}; }

    pid_t Start(const std::vector<std::string>& arguments) const {
        return Start(arguments, Captured());
    }
    pid_t Start(const std::vector<std::string>& arguments, const Streams& streams) const {
        std::vector<std::string> all = {PROGRAM};
        all.insert(all.end(), arguments.begin(), arguments.end());
        std::vector<char*> raw;
        for (std::string& argument : all) raw.push_back(argument.data());
        raw.push_back(nullptr);
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        for (int i = 0; i < 3; ++i) {
            const std::string& stream = streams[static_cast<std::size_t>(i)];
            const int flags = i == 0 ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
            if (stream.empty()) {
                posix_spawn_file_actions_addclose(&files, i);
            } else {
                posix_spawn_file_actions_addopen(&files, i, stream.c_str(), flags, 0600);
            }
        }
        pid_t child = -1;
        EXPECT_EQ(posix_spawn(&child, PROGRAM, &files, nullptr, raw.data(), environ), 0);
        posix_spawn_file_actions_destroy(&files);
        return child;
    }
    Result Finish(pid_t child) const {
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), Read("stdout"),
                Read("stderr")};
    }
    Result Run(const std::vector<std::string>& arguments) const { return Finish(Start(arguments)); }

    std::string Path(const std::string& name) const { return folder_ / name; }
    std::string Read(const std::string& name) const {
        std::ifstream in(Path(name), std::ios::binary);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }
    void WriteText(const std::string& name, const std::string& text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
    }
    std::string WriteImage(const std::string& name, const CRowIteratorBands& image) const {
        imagefile::WriteImage(Path(name), image, nullptr, {.overwrite = true, .input = {}});
        return Path(name);
    }
    CRowIteratorBands ReadImage(const std::string& name) const {
        return imagefile::ReadImage(Path(name)).pixels;
    }
    // The names of all files in the folder but the program's output.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            const std::string name = entry.path().filename();
            const auto ours = {"stdout", "stderr", "config", "cache", "data"};
            if (std::find(ours.begin(), ours.end(), name) == ours.end()) {
                names.push_back(name);
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    static std::string UniqueName() {
        static int count = 0;
        return "program-" + std::to_string(getpid()) + "-" + std::to_string(count++);
    }
    std::filesystem::path folder_;
};
