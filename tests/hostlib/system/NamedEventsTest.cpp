#include "host/system/NamedEvents.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>

#include <atomic>
#include <thread>

#include "host/system/DebugOutput.h"
#include "support/TemporaryLogon.h"

namespace {
std::atomic<int> g_tries = 0;
}

// Found before the C library's: counts how often the host tries to lock its folder.
extern "C" __attribute__((visibility("default"))) int flock(int file, int operation) {
    g_tries += operation == (LOCK_EX | LOCK_NB);
    return static_cast<int>(syscall(SYS_flock, file, operation));
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(NamedEvents, LiveAsLongAsAnyHandle) {
    const TemporaryLogon logon;
    EXPECT_FALSE(OpenEventW(L"A"));
    SCreatedEvent made = CreateEventW(L"A");
    ASSERT_TRUE(made.event);
    EXPECT_EQ(made.error, 0);
    EXPECT_FALSE(OpenEventW(L"a")) << "letter case matters";

    SCreatedEvent again = CreateEventW(L"A");
    EXPECT_EQ(again.error, ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(again.event.IsSignalled());
    EXPECT_TRUE(made.event.Set());
    EXPECT_TRUE(again.event.IsSignalled());
    EXPECT_TRUE(CreateEventW(L"A").event.IsSignalled()) << "making it again must not reset it";

    made.event = CEventHandle();
    EXPECT_TRUE(OpenEventW(L"A").IsSignalled()) << "the second handle keeps it";
    again.event = CEventHandle();
    EXPECT_FALSE(OpenEventW(L"A"));
    EXPECT_THAT(logon.EventFiles(), IsEmpty());
    EXPECT_FALSE(CreateEventW(L"A").event.IsSignalled());
}

TEST(NamedEvents, AreSharedBetweenProcesses) {
    const TemporaryLogon logon;
    ChildProcess child([] { new CEventHandle(CreateEventW(L"A").event); });
    CEventHandle event = OpenEventW(L"A");
    ASSERT_TRUE(event);
    EXPECT_FALSE(event.IsSignalled());
    const ChildProcess other([] { OpenEventW(L"A").Set(); });
    EXPECT_TRUE(event.IsSignalled());
    child.Crash();
    EXPECT_EQ(CreateEventW(L"A").error, ERROR_ALREADY_EXISTS) << "this process still holds it";
}

TEST(NamedEvents, VanishWithACrashedProcess) {
    const TemporaryLogon logon;
    for (const bool look_first : {true, false}) {
        ChildProcess child([] { (new CEventHandle(CreateEventW(L"A").event))->Set(); });
        EXPECT_TRUE(OpenEventW(L"A").IsSignalled());
        child.Crash();
        ASSERT_THAT(logon.EventFiles(), ElementsAre("A")) << "the crash left no file to deal with";
        EXPECT_FALSE(look_first && OpenEventW(L"A"));
        const SCreatedEvent made = CreateEventW(L"A");
        EXPECT_EQ(made.error, 0);
        EXPECT_FALSE(made.event.IsSignalled());
    }
}

// A child process that was forked has copies of all handles; its end must not close the originals.
TEST(NamedEvents, OutliveAForkedCopyOfTheHandle) {
    const TemporaryLogon logon;
    CEventHandle event = CreateEventW(L"A").event;
    {
        const ChildProcess child([&] { event = CEventHandle(); });
    }
    EXPECT_TRUE(OpenEventW(L"A"));
    EXPECT_THAT(logon.EventFiles(), ElementsAre("A"));
}

TEST(NamedEvents, AreRefused) {
    const TemporaryLogon logon;
    for (const wchar_t* name : {L"", L".", L"..", L"a/b", L"a\\b"}) {
        EXPECT_EQ(CreateEventW(name).error, ERROR_ACCESS_DENIED) << ToUtf8(name);
        EXPECT_FALSE(OpenEventW(name));
    }
    const auto runtime = logon.Folder() / "cmdtexture";
    using std::filesystem::perms;
    std::filesystem::permissions(runtime, perms::all);
    EXPECT_FALSE(CreateEventW(L"A").event) << "anybody may write there";
    std::filesystem::remove_all(runtime);
    std::filesystem::create_directory_symlink("/tmp", runtime);
    EXPECT_FALSE(CreateEventW(L"A").event) << "a link leads elsewhere";
    std::filesystem::remove(runtime);
    if (geteuid() == 0) {
        std::filesystem::create_directory(runtime);
        ASSERT_EQ(chown(runtime.c_str(), 1, 1), 0);
        EXPECT_FALSE(CreateEventW(L"A").event) << "somebody else's folder";
    }
    setenv("XDG_RUNTIME_DIR", (logon.Folder() / "missing").c_str(), 1);
    EXPECT_FALSE(CreateEventW(L"A").event);
}

// Asking for several events while another process keeps the lock waits once, and not at all once
// the lock is free again.
TEST(NamedEvents, WaitOnceForAStoppedProcess) {
    const TemporaryLogon logon;
    const CEventHandle event = CreateEventW(L"A").event;
    const int folder = open((logon.Folder() / "cmdtexture/events").c_str(), O_RDONLY);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    EXPECT_FALSE(OpenEventW(L"A"));
    EXPECT_GT(g_tries.exchange(0), 3);
    EXPECT_FALSE(OpenEventW(L"A"));
    EXPECT_EQ(CreateEventW(L"B").error, ERROR_ACCESS_DENIED);
    EXPECT_EQ(g_tries.exchange(0), 2) << "one try each";
    close(folder);
    EXPECT_TRUE(OpenEventW(L"A"));
}

// Two handles that both claim to have made the event never exist at once, and an event that is
// held is always found, whatever others open and close at the same time.
TEST(NamedEvents, HaveOneMaker) {
    const TemporaryLogon logon;
    std::atomic<int> makers = 0, clashes = 0, lost = 0, made = 0;
    const auto work = [&] {
        for (int round = 0; round < 200; ++round) {
            SCreatedEvent event = CreateEventW(L"A");
            if (!event.event) ++lost;
            const bool maker = event.error == 0;
            if (maker && ++makers > 1) ++clashes;
            made += maker;
            if (!OpenEventW(L"A")) ++lost;
            if (maker) --makers;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(clashes, 0);
    EXPECT_EQ(lost, 0);
    EXPECT_GT(made, 0);
    EXPECT_THAT(logon.EventFiles(), IsEmpty());
}

TEST(DebugOutput, KeepsTheLinesOfSeveralProcessesWhole) {
    const TemporaryLogon logon;
    const auto write = [](wchar_t letter) {
        const std::wstring line(5000, letter);
        for (int i = 0; i < 100; ++i) OutputDebugStringW((line + L"\n").c_str());
    };
    const pid_t child = fork();
    if (child == 0) {
        write(L'ü');
        _exit(0);
    }
    write(L'b');
    waitpid(child, nullptr, 0);
    OutputDebugStringW(L"no line feed");
    std::string umlauts;
    for (int i = 0; i < 5000; ++i) umlauts += "ü";
    const std::vector<std::string> lines = logon.DebugLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), umlauts), 100);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), std::string(5000, 'b')), 100);
    ASSERT_EQ(lines.size(), 201U);
    EXPECT_EQ(lines.back(), "no line feed");
}

// A pipe whose reader has gone is no reason to end the program.
TEST(DebugOutput, OutlivesItsReader) {
    const TemporaryLogon logon;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    setenv("CMDTEXTURE_DEBUG_OUTPUT", ("/proc/self/fd/" + std::to_string(ends[1])).c_str(), 1);
    OutputDebugStringW(L"unheard");
    close(ends[1]);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_FALSE(sigismember(&pending, SIGPIPE));
}

}  // namespace
