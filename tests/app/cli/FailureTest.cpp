#include <gtest/gtest.h>
#include <signal.h>

#include <array>
#include <chrono>
#include <thread>

#include "app/cli/Program.h"

namespace {

// What goes wrong, what the status says, and what the message must name.
TEST(Failure, HasAStatusAMessageAndLeavesNothing) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 20, 20, 1));
    const std::string other =
        program.WriteImage("other.png", pictures::Noise(ENPixelFormat::Grey8, 5, 5, 1));
    const std::string thin =
        program.WriteImage("thin.png", pictures::Noise(ENPixelFormat::Grey8, 1, 9, 1));
    program.WriteText("empty.png", "");
    program.WriteText("text.png", "this is no picture");
    program.WriteText("cut.png", program.Read("in.png").substr(0, 300));
    program.WriteText("broken.json", "{\"Width\": ");
    program.WriteText("list.json", "[1, 2]");
    program.WriteText("deep.json", std::string(60000, '[') + std::string(60000, ']'));
    program.WriteText("twice.json", "{\"Width\": 5, \"Width\": 6}");
    program.WriteText("more.json", "{\"Width\": 5} {}");
    program.WriteText("null.json", std::string("{\"Width\": 5}\0x", 14));
    program.WriteText("foreign.json", "{\"Width\": 5, \"Angle\": 7}");
    const std::string out = program.Path("out.png");
    const std::vector<std::string> before = program.Files();
    const std::string original = program.Read("in.png");
    const auto path = [&](const char* name) { return program.Path(name); };
    struct {
        std::vector<std::string> arguments;
        int status;
        std::string named;
    } const cases[] = {
        {{}, 2, "subcommand"},
        {{"frob"}, 2, "frob"},
        {{"apply", "Blinds", in}, 2, "--output"},
        {{"apply", "Blinds", in, "-o", out, "--frob"}, 2, "--frob"},
        {{"apply", "Sandston", in, "-o", out}, 2, "Sandstone"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Widht=3"}, 2, "Width"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Width"}, 2, "NAME=VALUE"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Width=abc"}, 2, "whole number"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Width="}, 2, "Width"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Width=1"}, 2, "from 2 to"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Width=21"}, 2, "from 2 to 20"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Width=99999999999999999999"}, 2, "from 2"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Horizontal=maybe"}, 2, "true or false"},
        {{"apply", "Blinds", in, "-o", out, "-p", "Color=#ff00"}, 2, "#RRGGBB"},
        {{"apply", "Tiles", in, "-o", out, "-p", "TileShape=round"}, 2, "hexagons"},
        {{"apply", "Sculpture", in, "-o", out, "-p", "PatternName=marbel"}, 2, "marble"},
        {{"apply", "Texture", in, "-o", out, "-p", "TextureName=nothing-like-it"}, 2, "texture"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("none.json")}, 2, "none.json"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("broken.json")}, 2, "broken.json"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("list.json")}, 2, "object"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("deep.json")}, 2, "32 levels"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("twice.json")}, 2, "Width\" comes"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("more.json")}, 2, "byte 14"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("null.json")}, 2, "not valid JSON"},
        {{"preset", "save", "Blinds", "../x"}, 2, "../x"},
        {{"apply", "Blinds", in, "-o", out, "--preset", path("foreign.json")}, 2, "Angle"},
        {{"apply", "Blinds", in, "-o", out, "--canvas", "10"}, 2, "WxH"},
        {{"apply", "Blinds", in, "-o", out, "--canvas", "10x20x"}, 2, "WxH"},
        {{"apply", "Blinds", in, "-o", out, "--canvas", "4294967306x10"}, 2, "WxH"},
        {{"apply", "Blinds", in, "-o", out, "--at", "1;2"}, 2, "X,Y"},
        {{"apply", "Blinds", in, "-o", out, "--at", "10,20junk"}, 2, "X,Y"},
        {{"apply", "Weave", thin, "-o", out}, 7, "GapWidth"},
        {{"apply", "StrawWall", in, "-o", out, "--canvas", "1x1"}, 7, "Density"},
        {{"apply", "Blinds", in, "-o", out, "--mask", other}, 2, "20 x 20"},
        {{"apply", "Blinds", in, "-o", out, "--language", "XX"}, 2, "EN"},
        {{"apply", "Blinds", in, "-o", path("out.xyz")}, 2, "xyz"},
        {{"apply", "Blinds", path("none.png"), "-o", out}, 3, "none.png"},
        {{"apply", "Blinds", path("empty.png"), "-o", out}, 3, "empty.png"},
        {{"apply", "Blinds", path("text.png"), "-o", out}, 3, "text.png"},
        {{"apply", "Blinds", path("cut.png"), "-o", out}, 3, "cut.png"},
        {{"apply", "Blinds", program.Path(""), "-o", out}, 3, ""},
        {{"apply", "Blinds", in, "-o", out, "--max-pixels", "399"}, 6, "399"},
        {{"apply", "Blinds", in, "-o", other}, 5, "--overwrite"},
        {{"apply", "Blinds", in, "-o", in}, 5, "input"},
        {{"apply", "Blinds", in, "-o", path("no/such/folder.png")}, 5, "folder"},
        {{"describe", "Blindz"}, 2, "Blinds"},
        {{"resources", "--resources", path("none")}, 2, "none"},
        {{"gallery", path("none.png"), "-d", path("g")}, 3, "none.png"},
    };
    for (const auto& [arguments, status, named] : cases) {
        const auto result = program.Run(arguments);
        std::string shown;
        for (const std::string& argument : arguments) shown += argument + " ";
        EXPECT_EQ(result.status, status) << shown << result.err;
        EXPECT_EQ(result.err.substr(0, 19), "cmdtexture: error: ") << shown << result.err;
        EXPECT_NE(result.err.find(named), std::string::npos) << shown << result.err;
        EXPECT_EQ(result.out, "") << shown;
        ASSERT_EQ(program.Files(), before) << shown;
    }
    EXPECT_EQ(program.Read("in.png"), original);
}

// Closed and full streams, in all combinations: a lost message never costs a picture, and a lost
// report is told by the status.
TEST(Failure, LostMessagesCostNoPicture) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour16, 20, 20, 1));
    const std::string out = program.Path("out.jpg");  // the depth that JPEG has not is warned of
    const struct {
        std::vector<std::string> arguments;
        int status, status_without_output;
        bool makes_picture;
    } kCases[] = {
        {{"apply", "Weave", in, "-o", out}, 0, 0, true},
        {{"apply", "Weave", in, "-o", out, "--progress", "--json"}, 0, 5, true},
        {{"apply", "Weave", program.Path("none.png"), "-o", out}, 3, 3, false},
        {{"list"}, 0, 5, false},
        {{"--help"}, 0, 5, false},
    };
    for (const auto& each : kCases) {
        for (const char* input : {"/dev/null", ""}) {
            for (const std::string& output :
                 {program.Path("stdout"), std::string("/dev/full"), std::string()}) {
                for (const std::string& error :
                     {program.Path("stderr"), std::string("/dev/full"), std::string()}) {
                    const auto run =
                        program.Finish(program.Start(each.arguments, {input, output, error}));
                    const bool heard = output == program.Path("stdout");
                    EXPECT_EQ(run.status, heard ? each.status : each.status_without_output)
                        << each.arguments[0] << " '" << input << "' '" << output << "' '" << error;
                    EXPECT_EQ(std::filesystem::remove(out), each.makes_picture);
                }
            }
        }
    }
}

// A signal at any moment ends the program with its status and without a trace.
TEST(Failure, SignalsLeaveNothingBehind) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 1500, 1200, 1));
    const std::vector<std::string> before = program.Files();
    int interrupted = 0;
    for (int round = 0; round < 12; ++round) {
        const int number = std::array{SIGINT, SIGTERM, SIGHUP, SIGQUIT}[round % 4];
        const pid_t child = program.Start(
            {"apply", "RoughLeather", in, "-o", program.Path("out.png"), "-p", "Blur=100"});
        std::this_thread::sleep_for(std::chrono::milliseconds(60 + 60 * round));
        kill(child, number);
        const auto result = program.Finish(child);
        if (result.status == 0) {
            std::filesystem::remove(program.Path("out.png"));
        } else {
            // Before the program has taken the signal over, it dies of it, which a shell reports
            // by the same number.
            EXPECT_TRUE(result.status == 128 + number || result.status == 1000 + number)
                << result.status << result.err;
            ++interrupted;
        }
        ASSERT_EQ(program.Files(), before);
    }
    EXPECT_GT(interrupted, 0) << "no signal came in time";
}

}  // namespace
