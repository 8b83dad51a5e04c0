#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "app/cli/Program.h"

namespace {

// A picture in by a pipe and out by another is the one that files give.
TEST(Streams, GiveWhatFilesGive) {
    const Program program;
    const std::string in =
        program.WriteImage("in.tif", pictures::Noise(ENPixelFormat::Colour16, 90, 70, 1));
    const std::string out = program.Path("out.png"), file = program.Path("file.png");
    ASSERT_EQ(program.Run({"apply", "Blinds", in, "-o", file}).status, 0);
    ASSERT_EQ(mkfifo(program.Path("pipe").c_str(), 0600), 0);
    for (const std::string& source : {std::string("-"), program.Path("pipe")}) {
        const pid_t child = program.Start({"apply", "Blinds", source, "-o", "-", "--format", "png"},
                                          {in, out, program.Path("stderr")});
        if (source != "-") program.WriteText("pipe", program.Read("in.tif"));
        const auto run = program.Finish(child);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(program.Read("out.png") == program.Read("file.png"), true) << source;
        std::filesystem::remove(out);
    }
}

// Nothing but a whole picture ever comes out.
TEST(Streams, FailuresWriteNothing) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 90, 70, 1));
    program.WriteText("cut.png", program.Read("in.png").substr(0, 9000));
    program.WriteText("empty", "");
    const struct {
        std::string input;
        std::vector<std::string> options;
        int status;
    } cases[] = {
        {in, {}, 2},
        {in, {"--format", "gif"}, 2},
        {in, {"--format", "png", "--json"}, 2},
        {in, {"--format", "png", "--quality", "80"}, 2},
        {in, {"--format", "png", "--max-memory", "1K"}, 0},
        {program.Path("cut.png"), {"--format", "png"}, 3},
        {program.Path("empty"), {"--format", "png"}, 3},
        {"/dev/zero", {"--format", "png"}, 4},
    };
    for (const auto& each : cases) {
        std::vector<std::string> arguments = {"apply", "Fur", "-", "-o", "-"};
        arguments.insert(arguments.end(), each.options.begin(), each.options.end());
        const auto run = program.Finish(
            program.Start(arguments, {each.input, program.Path("stdout"), program.Path("stderr")}));
        EXPECT_EQ(run.status, each.status) << run.err;
        EXPECT_EQ(run.out.empty(), each.status != 0) << each.input;
    }
}

// A pipe into which nobody writes, and one that nobody reads, hold up neither a signal nor a limit.
TEST(Streams, WaitingCanBeEnded) {
    const Program program;
    ASSERT_EQ(mkfifo(program.Path("pipe").c_str(), 0600), 0);
    const std::vector<std::string> apply = {"apply", "Fur", program.Path("pipe"), "-o",
                                            program.Path("out.png")};
    std::vector<std::string> limited = apply;
    limited.insert(limited.end(), {"--timeout", "0.3"});
    const auto timed_out = program.Run(limited);
    EXPECT_EQ(timed_out.status, 6) << timed_out.err;
    EXPECT_NE(timed_out.err.find("time limit"), std::string::npos) << timed_out.err;
    const pid_t child = program.Start(apply);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    kill(child, SIGTERM);
    const auto ended = program.Finish(child);
    EXPECT_TRUE(ended.status == 143 || ended.status == 1000 + SIGTERM) << ended.status;
    EXPECT_EQ(program.Files(), std::vector<std::string>{"pipe"});
}

}  // namespace
