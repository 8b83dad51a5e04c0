#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <thread>

#include "Program.h"

namespace {

// The variables that tell of a screen, for the program's runs in a scope.
class Screen {
  public:
    Screen(const char* display, const char* platform) {
        unsetenv("WAYLAND_DISPLAY");
        display ? setenv("DISPLAY", display, 1) : unsetenv("DISPLAY");
        platform ? setenv("QT_QPA_PLATFORM", platform, 1) : unsetenv("QT_QPA_PLATFORM");
    }
    ~Screen() {
        unsetenv("DISPLAY");
        unsetenv("QT_QPA_PLATFORM");
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
};

TEST(Edit, WithoutAScreenSaysSo) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 40, 30, 1));
    for (const char* display : {static_cast<const char*>(nullptr), ":4711"}) {
        const Screen screen(display, display ? "xcb" : nullptr);
        const Program::Result run = program.Run({"edit", "Fur", in, "-o", program.Path("out.png")});
        EXPECT_EQ(run.status, 7) << run.err;
        EXPECT_NE(run.err.find("cmdtexture: error: no window can be shown"), std::string::npos)
            << run.err;
    }
    EXPECT_EQ(program.Files(), std::vector<std::string>{"in.png"});
}

TEST(Edit, RefusesBeforeItOpensAWindow) {
    const Program program;
    const Screen screen(nullptr, "offscreen");
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 40, 30, 1));
    EXPECT_EQ(program.Run({"edit", "Fur", in, "-o", in}).status, 5);
    EXPECT_EQ(program.Run({"edit", "Fuzz", in}).status, 2);
    EXPECT_EQ(program.Run({"edit", "Fur", in, "-p", "Length=0"}).status, 2);
    EXPECT_EQ(program.Run({"edit", "Fur", program.Path("none.png")}).status, 3);
}

// The window is up before the picture is decoded; the signal also closes the message about one
// that is damaged.
TEST(Edit, ASignalClosesTheWindowAndLeavesNothing) {
    const Program program;
    const Screen screen(nullptr, "offscreen");
    const std::string good =
        program.WriteImage("good.png", pictures::Noise(ENPixelFormat::Colour8, 400, 300, 1));
    std::string bytes = program.Read("good.png");
    bytes[bytes.size() / 2] ^= 1;
    program.WriteText("damaged.png", bytes);
    struct SCase {
        std::string in;
        int status;
        const char* message;
    };
    for (const SCase& c :
         {SCase{good, 130, ""}, SCase{program.Path("damaged.png"), 3, "damaged.png: is damaged"}}) {
        const pid_t child = program.Start({"edit", "Fur", c.in, "-o", program.Path("out.png")});
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        kill(child, SIGINT);
        const Program::Result run = program.Finish(child);
        EXPECT_EQ(run.status, c.status) << run.err;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    }
    for (const auto& arguments : {std::vector<std::string>{"edit"}, {"edit", good}}) {
        const pid_t child = program.Start(arguments);
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        kill(child, SIGINT);
        EXPECT_EQ(program.Finish(child).status, 130) << "the window with all effects";
    }
    EXPECT_EQ(program.Files(), (std::vector<std::string>{"damaged.png", "good.png"}));
}

}  // namespace
