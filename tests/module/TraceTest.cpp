#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "host/system/DebugOutput.h"
#include "hostlib/system/ModifierKeys.h"
#include "module/RTRACE.h"
#include "module/TComponentResourceData.h"
#include "module/TraceSwitch.h"
#include "plugin/AllCommands.h"
#include "support/TemporaryLogon.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kEnableEvent = "BRW_OUTPUT_DEBUG_ENABLE";
constexpr const char* kCheckpointEvent = "HOTKEY_BRW2023_CHECKPOINT";

std::string RegistryWith(const std::string& enable) {
    return "[Software\\Quarn\\Brushwerk\\X15\\Debug]\nEnable = " + enable + "\n";
}

TEST(TraceSwitch, FollowsTheRegistry) {
    const struct {
        const char* registry;
        bool enabled;
    } cases[] = {{"", false},
                 {"[Software\\Quarn\\Brushwerk\\X15\\Debug]\n", false},
                 {"[Software\\Quarn\\Brushwerk\\X15\\Debug]\nEnable = yes\n", false},
                 {"[Software\\Quarn\\Brushwerk\\X15\\Debug]\nEnable = 0\n", false},
                 {"[Software\\Quarn\\Brushwerk\\X15\\Debug]\nEnable = 1\n", true},
                 {"[Software\\Quarn\\Brushwerk\\X15\\Debug]\nEnable = 0x80000000\n", true}};
    const TemporaryLogon logon;
    for (const auto& [registry, enabled] : cases) {
        logon.WriteRegistry(registry);
        const std::optional<TraceSwitch> tracing(std::in_place);
        EXPECT_EQ(tracing->Enabled(), enabled) << registry;
        EXPECT_EQ(OpenEventW(FromUtf8(kEnableEvent)).IsSignalled(), enabled) << registry;
        EXPECT_THAT(logon.EventFiles(), UnorderedElementsAre(kEnableEvent, kCheckpointEvent));
    }
    EXPECT_THAT(logon.EventFiles(), IsEmpty()) << "a switch closes what it made";
}

// The first module's decision holds for all that start while its event exists.
TEST(TraceSwitch, AgreesWithTheModulesBefore) {
    const TemporaryLogon logon;
    for (const bool enabled : {true, false}) {
        logon.WriteRegistry(RegistryWith(enabled ? "1" : "0"));
        ChildProcess first([] { new TraceSwitch; });
        logon.WriteRegistry(RegistryWith(enabled ? "0" : "1"));
        EXPECT_EQ(TraceSwitch().Enabled(), enabled);
        first.Crash();
        EXPECT_EQ(TraceSwitch().Enabled(), !enabled) << "a crashed module decides for nobody";
    }
}

// Others may signal the event before or after: what counts is the moment of the first trace.
TEST(TraceSwitch, DecidesOnce) {
    const TemporaryLogon logon;
    const TraceSwitch off;
    OpenEventW(FromUtf8(kEnableEvent)).Set();
    EXPECT_FALSE(off.Enabled());
    EXPECT_TRUE(TraceSwitch().Enabled());
}

TEST(TraceSwitch, StaysOffWithoutEvents) {
    const TemporaryLogon logon;
    logon.WriteRegistry(RegistryWith("1"));
    setenv("XDG_RUNTIME_DIR", (logon.Folder() / "missing").c_str(), 1);
    EXPECT_FALSE(TraceSwitch().Enabled());
}

TEST(TraceSwitch, RecordsTheModifierKeysOfTheFirstModule) {
    const struct {
        SModifierKeys held;
        const char* event;
    } cases[] = {{{}, nullptr},
                 {{.alt = true}, nullptr},
                 {{.control = true}, nullptr},
                 {{.shift = true, .alt = true}, "HOTKEY_BRW2023_SHIFT"},
                 {{.shift = true}, "HOTKEY_BRW2023_SHIFT"},
                 {{.shift = true, .control = true}, "HOTKEY_BRW2023_CTRL_SHIFT"},
                 {{.control = true, .alt = true}, "HOTKEY_BRW2023_CTRL_ALT"},
                 {{.shift = true, .control = true, .alt = true}, "HOTKEY_BRW2023_CTRL_ALT"}};
    const TemporaryLogon logon;
    for (const auto& [held, event] : cases) {
        SetModifierKeys(held);
        const TraceSwitch first;
        SetModifierKeys({.shift = !held.shift, .control = true, .alt = true});
        const TraceSwitch second;
        std::vector<std::string> expected = {kEnableEvent, kCheckpointEvent};
        if (event) expected.emplace_back(event);
        EXPECT_THAT(logon.EventFiles(), testing::UnorderedElementsAreArray(expected));
    }
    SetModifierKeys({});
}

// The debugger output of a process of its own, since a module decides once; without the thread ids.
std::vector<std::string> LinesOf(const TemporaryLogon& logon, void (*body)()) {
    const ChildProcess child(body);
    std::vector<std::string> lines = logon.DebugLines();
    for (std::string& line : lines) line.erase(0, line.find(']') + 1);
    return lines;
}

void WriteOneOfEach() {
    RTRACE(L"F", L"a", kTraceInformation, 7).write(L"both %d", -3);
    RTRACE(L"F", nullptr, kTraceInformation, 7)
        .write(L"%s, %%s, %S, %-4d|", L"wide \u2713", "narrow", 5);
    RTRACE(nullptr, L"a", kTraceInformation, 7).write(L"%c%C%ls%hs", L'\u00FC', 'c', L"l", "h");
    RTRACE(L"", L"", kTraceInformation, 7).write(L"neither %.*s|%5s|", 2, L"cut", L"pad");
    RTRACE(L"F", L"a", kTraceDebug, 7).write(L"debug");
    RTRACE(L"F", L"a", L"[brwX64]\t[Debug]\t", 7).write(L"debug");
    RTRACE(L"F", L"a", nullptr, 7).write(L"no tag");
}

TEST(RTrace, WritesInformationLinesWhenEnabled) {
    const TemporaryLogon logon;
    logon.WriteRegistry(RegistryWith("1"));
    EXPECT_THAT(LinesOf(logon, &WriteOneOfEach),
                ElementsAre("[BRWx64]\t[INFO]\t\t[F]\t[a(7)]:\tboth -3",
                            "[BRWx64]\t[INFO]\t\t[F]\t:\twide \u2713, %s, narrow, 5   |",
                            "[BRWx64]\t[INFO]\t\t[a(7)]:\t\u00FCclh",
                            "[BRWx64]\t[INFO]\t\t:\tneither cu|  pad|"));
}

TEST(RTrace, WritesNothingWhenDisabled) {
    const TemporaryLogon logon;
    logon.WriteRegistry(RegistryWith("0"));
    EXPECT_THAT(LinesOf(logon, &WriteOneOfEach), IsEmpty());
    EXPECT_THAT(logon.EventFiles(), UnorderedElementsAre(kEnableEvent, kCheckpointEvent));
}

TEST(RTrace, WritesLinesOfAnyLengthWithTheThreadsId) {
    const TemporaryLogon logon;
    logon.WriteRegistry(RegistryWith("1"));
    const ChildProcess child([&] {
        const std::string id = std::to_string(getpid());
        std::ofstream(logon.Folder() / "pid") << id;
        RTRACE(nullptr, nullptr, L"", 0).write(L"%s", std::wstring(100'000, L'x').c_str());
    });
    std::string id;
    std::ifstream(logon.Folder() / "pid") >> id;
    EXPECT_THAT(logon.DebugLines(), ElementsAre("[" + id + "]:\t" + std::string(100'000, 'x')));
}

// Two processes, each with a module of its own, and only the first one finds the registry on.
TEST(RTrace, IsSharedBetweenProcesses) {
    const TemporaryLogon logon;
    logon.WriteRegistry(RegistryWith("1"));
    const ChildProcess first([] { RTRACE(L"one", nullptr, kTraceInformation, 0).write(L"x"); });
    logon.WriteRegistry("");
    EXPECT_THAT(LinesOf(logon, [] { RTRACE(L"two", nullptr, kTraceInformation, 0).write(L"y"); }),
                ElementsAre("[BRWx64]\t[INFO]\t\t[one]\t:\tx", "[BRWx64]\t[INFO]\t\t[two]\t:\ty"));
}

TEST(RTrace, EditWritesItsLineBeforeTheDialog) {
    struct Data : TCommandResourceData<ICmdResourceData> {
        Data() : TCommandResourceData(*AllCommands()[7].description) {}
        CErrorAutoThrow ShowDialog(ICommandExecutionContext*, VCommandImplementation*) override {
            OutputDebugStringW(L"[]the dialog");
            return {};
        }
        CErrorAutoThrow DefineParameters(ICommandExecutionContext*,
                                         IParameterRepository*) override {
            return {};
        }
    };
    const TemporaryLogon logon;
    logon.WriteRegistry(RegistryWith("1"));
    EXPECT_THAT(LinesOf(logon, [] { Data().Edit(nullptr, nullptr).Ignore(); }),
                ElementsAre("[BRWx64]\t[INFO]\t\t[TComponentResourceData<class ICmdResourceData>::"
                            "Edit]\t:\t[Command] Display UI for command Sandstone to edit the "
                            "parameters ",
                            "the dialog"));
}

}  // namespace
