#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <chrono>
#include <csignal>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <thread>

#include "app/cli/Program.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using pictures::Noise;
using testing::HasSubstr;

class Batch : public ::testing::Test {
  protected:
    using Arguments = std::vector<std::string>;

    // Pictures in/0.png, in/below/1.png and so on.
    void MakePictures(int count, CSize size = {40, 30}) {
        fs::create_directories(program_.Path("in/below"));
        for (int i = 0; i < count; ++i) {
            const std::string name =
                std::string(i % 2 ? "in/below/" : "in/") + std::to_string(i) + ".png";
            program_.WriteImage(
                name, Noise(ENPixelFormat::Colour8, size.cx, size.cy, static_cast<unsigned>(i)));
        }
    }
    Arguments All(const Arguments& more = {}) const {
        Arguments all = {"batch",
                         "Weave",
                         program_.Path("in"),
                         "--recursive",
                         "-o",
                         program_.Path("out/{dir}/{name}-w.{ext}"),
                         "--log",
                         program_.Path("log"),
                         "--quiet"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    Program::Result Run(const Arguments& arguments, int status = 0) const {
        auto result = program_.Run(arguments);
        EXPECT_EQ(result.status, status) << result.err;
        return result;
    }
    // The outputs of the log's lines of an event, in their order.
    Arguments Logged(const std::string& event, const std::string& log = "log") const {
        Arguments outputs;
        std::istringstream lines(program_.Read(log));
        for (std::string line; std::getline(lines, line);) {
            const json parsed = json::parse(line);
            if (parsed["event"] == event) outputs.push_back(parsed["output"]);
        }
        return outputs;
    }
    std::set<std::string> Files(const std::string& folder) const {
        std::set<std::string> files;
        if (!fs::exists(program_.Path(folder))) return files;
        for (const auto& entry : fs::recursive_directory_iterator(program_.Path(folder))) {
            if (entry.is_regular_file()) {
                files.insert(entry.path().lexically_relative(program_.Path(folder)));
            }
        }
        return files;
    }
    // Every input has its output, with the bytes of apply, and there is nothing else.
    void ExpectComplete(int count, const Arguments& values = {}) const {
        std::set<std::string> expected;
        for (const std::string& in : Files("in")) {
            const fs::path path(in);
            const std::string out = path.parent_path() / (path.stem().string() + "-w.png");
            expected.insert(out);
            Arguments apply = {
                "apply",      "Weave", program_.Path("in/" + in), "-o", program_.Path("apply.png"),
                "--overwrite"};
            apply.insert(apply.end(), values.begin(), values.end());
            Run(apply);
            EXPECT_EQ(program_.Read("out/" + out), program_.Read("apply.png")) << out;
        }
        EXPECT_EQ(expected.size(), static_cast<std::size_t>(count));
        EXPECT_EQ(Files("out"), expected);
    }
    void Damage(const std::string& file) const {
        const std::string bytes = program_.Read(file);
        program_.WriteText(
            file, bytes.substr(0, bytes.size() / 2) + '!' + bytes.substr(bytes.size() / 2 + 1));
    }

    Program program_;
};

TEST_F(Batch, RunAgainDoesWhatIsNotDone) {
    MakePictures(6);
    Run(All());
    ExpectComplete(6);
    const auto run = [&](const Arguments& more = {}, int status = 0) {
        const std::size_t before = Logged("done").size();
        Run(All(more), status);
        return Logged("done").size() - before;
    };
    EXPECT_EQ(run(), 0U);
    fs::last_write_time(program_.Path("in/0.png"), fs::file_time_type::clock::now());
    fs::last_write_time(program_.Path("out/0-w.png"), fs::file_time_type::clock::now());
    EXPECT_EQ(run(), 0U) << "contents are the same";
    EXPECT_EQ(run({"--verify"}), 0U);
    Damage("out/below/1-w.png");
    program_.WriteText("out/2-w.png", "");
    fs::remove(program_.Path("out/4-w.png"));
    program_.WriteImage("in/0.png", Noise(ENPixelFormat::Colour8, 40, 30, 99));
    EXPECT_EQ(run(), 4U);
    ExpectComplete(6);
    EXPECT_EQ(run({"-p", "GapWidth=3"}), 6U);
    ExpectComplete(6, {"-p", "GapWidth=3"});
    EXPECT_EQ(run({"--max-memory", "1K", "--compression", "1"}), 6U);
    EXPECT_EQ(run({"--compression", "1"}), 0U) << "memory changes no result";
}

// Where one picture fits, the next begins when it is through, whatever the number of jobs.
TEST_F(Batch, MemoryBoundsWhatIsInHand) {
    MakePictures(12);
    Run(All({"--jobs", "4", "--max-memory", "20000"}));  // a picture takes 4 x 3600
    ExpectComplete(12);
    std::istringstream lines(program_.Read("log"));
    std::string in_hand;
    for (std::string line; std::getline(lines, line);) {
        const json parsed = json::parse(line);
        if (parsed["event"] == "begun") {
            EXPECT_EQ(in_hand, "");
            in_hand = parsed["output"];
        } else if (parsed["event"] == "done") {
            EXPECT_EQ(in_hand, parsed["output"]);
            in_hand.clear();
        }
    }
}

// A picture that is bad costs no other one; it is tried again until it is good.
TEST_F(Batch, FailuresAreLoggedAndTheRestGoesOn) {
    MakePictures(3);
    program_.WriteText("in/bad.png", "no picture");
    fs::create_directories(program_.Path("out"));
    program_.WriteText("out/2-w.png", "the user's own");
    const auto result = Run(All({"--json"}), 5);
    EXPECT_EQ(program_.Read("out/2-w.png"), "the user's own");
    const json summary = json::parse(result.out);
    EXPECT_EQ(summary["done"], 2);
    EXPECT_EQ(summary["failed"], 2);
    std::map<std::string, int> statuses;
    for (const json& line : summary["failures"]) {
        statuses[fs::path(line["input"].get<std::string>()).filename()] = line["status"];
        EXPECT_THAT(result.err, HasSubstr(line["error"].get<std::string>()));
    }
    EXPECT_EQ(statuses, (std::map<std::string, int>{{"2.png", 5}, {"bad.png", 3}}));

    program_.WriteImage("in/bad.png", Noise(ENPixelFormat::Colour8, 9, 9, 1));
    fs::remove(program_.Path("out/below/1-w.png"));
    fs::remove(program_.Path("out/2-w.png"));
    Run(All({"--retry-failed"}));
    EXPECT_EQ(Files("out"), (std::set<std::string>{"0-w.png", "2-w.png", "bad-w.png"}));
    Run(All());
    ExpectComplete(4);
}

TEST_F(Batch, StopsOnErrorWhenAsked) {
    MakePictures(8);
    program_.WriteText("in/00.png", "no picture");
    Run(All({"--stop-on-error", "--jobs", "1"}), 3);
    EXPECT_LT(Logged("done").size(), 8U);
    fs::remove(program_.Path("in/00.png"));
    Run(All({"--stop-on-error"}));
    ExpectComplete(8);
}

// Whatever is refused is refused before any work.
TEST_F(Batch, RefusesWhatCannotBeMeant) {
    MakePictures(2);
    fs::copy(program_.Path("in/0.png"), program_.Path("in/A.png"));
    fs::copy(program_.Path("in/0.png"), program_.Path("in/below/a.png"));
    program_.WriteText("rows", "{\"input\": \"x\", \"output\": \"y.png\", \"efect\": \"Fur\"}\n");
    const std::string in = program_.Path("in"), out = program_.Path("out/");
    const struct {
        Arguments arguments;
        int status;
        std::string message;
    } cases[] = {
        {{"batch", "Fur", in, "-r", "-o", out + "{name}.png"}, 2, "letter case only"},
        {{"batch", "Fur", in, "-r", "-o", out + "{effect}.png"}, 2, "would both be written"},
        {{"batch", "Fur", in, "-o", in + "/{name}.png"}, 2, "the output is an input"},
        {{"batch", "Fur", in, "-o", out + "one.png"}, 2, "one name for all"},
        {{"batch", "Fur", in, "-o", out + "{nmae}.png"}, 2, "{nmae}"},
        {{"batch", "Fur", in}, 2, "no output"},
        {{"batch", "Fir", in, "-o", out + "{name}.png"}, 2, "Fir"},
        {{"batch", "Fur", in + "/*.jpg", "-o", out + "{name}.png"}, 3, "no picture has such"},
        {{"batch", "Fur", program_.Path("in/below/*/"), "-o", out + "{name}.png"}, 3, "no picture"},
        {{"batch", "Fur", in, "--shard", "3/2", "-o", out + "{name}.png"}, 2, "not a shard"},
        {{"batch", "--manifest", program_.Path("rows")}, 2, "line 1: step 1: a step has no"},
        {{"batch", "Fur", in, "-o", out + "{name}.png", "--log", in + "/0.png"}, 5, "not the log"}};
    const auto files = Files(".");
    for (auto [arguments, status, message] : cases) {
        if (arguments.back() != in + "/0.png") {
            arguments.insert(arguments.end(), {"--log", program_.Path("log")});
        }
        EXPECT_THAT(Run(arguments, status).err, HasSubstr(message));
        fs::remove(program_.Path("log"));
        EXPECT_EQ(Files("out"), std::set<std::string>());
    }
    for (const char* name : {"in/A.png", "in/0.png"}) {
        EXPECT_NO_THROW(program_.ReadImage(name)) << name;
    }
}

TEST_F(Batch, AManifestSaysWhatEachPictureGets) {
    program_.WriteImage("a.png", Noise(ENPixelFormat::Colour8, 20, 20, 1));
    const std::string odd = "odd\xff name.png";  // no UTF-8
    program_.WriteImage(odd, Noise(ENPixelFormat::Colour8, 20, 20, 2));
    program_.WriteText("fur.json", R"([{"effect": "Fur"}, {"effect": "Blinds"}])");
    const auto path = [&](const std::string& name) { return program_.Path(name); };
    std::string hex;
    for (const char byte : path(odd)) {
        constexpr const char* kDigits = "0123456789abcdef";
        hex += {kDigits[(byte >> 4) & 15], kDigits[byte & 15]};
    }
    program_.WriteImage("mask.png", Noise(ENPixelFormat::Grey8, 20, 20, 3));
    const json rows[] = {{{"input", path("a.png")},
                          {"output", path("1.png")},
                          {"recipe", path("fur.json")},
                          {"mask", path("mask.png")}},
                         {{"input", path("a.png")},
                          {"output", path("2.png")},
                          {"effect", "Weave"},
                          {"parameters", {{"GapWidth", 3}}},
                          {"canvas", "90x80"},
                          {"at", "31,7"}},
                         {{"inputHex", hex}, {"page", 1}}};
    std::string manifest;
    for (const json& row : rows) manifest += row.dump() + "\n\n";
    program_.WriteText("rows", manifest);
    const Arguments batch = {"batch",      "Sandstone", "--manifest",
                             path("rows"), "-o",        path("{name}-{effect}-{index:2}.png"),
                             "--canvas",   "40x30",     "--log",
                             path("log")};
    Run(batch);
    const std::tuple<Arguments, std::string, std::string> same[] = {
        {{"--recipe", path("fur.json"), "--mask", path("mask.png"), "--canvas", "40x30"},
         "a.png",
         "1.png"},
        {{"Weave", "-p", "GapWidth=3", "--canvas", "90x80", "--at", "31,7"}, "a.png", "2.png"},
        {{"Sandstone", "--canvas", "40x30"}, odd, "odd\xff name-Sandstone-03.png"}};
    for (const auto& [what, in, out] : same) {
        Arguments apply = {"apply", path(in), "-o", path("apply.png"), "--overwrite"};
        apply.insert(apply.begin() + 1, what.begin(), what.end());
        Run(apply);
        EXPECT_EQ(program_.Read(out), program_.Read("apply.png")) << out;
    }
    program_.WriteImage("mask.png", Noise(ENPixelFormat::Grey8, 20, 20, 4));
    Run(batch);
    EXPECT_EQ(Logged("done").size(), 4U) << "the picture of another mask is done anew";
    EXPECT_EQ(Logged("done").back(), path("1.png"));
    // What is not done any more goes from the report back into a batch.
    const auto files = program_.Files();
    program_.WriteText("log", program_.Read("log").substr(0, program_.Read("log").find("\"begun")));
    const std::string report = Run({"batch", "--report", path("log")}, 1).out;
    EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 3) << report;
    for (const char* out : {"1.png", "2.png", "odd\xff name-Sandstone-03.png"}) {
        fs::remove(path(out));
    }
    program_.WriteText("rows", report);
    fs::remove(path("log"));
    Run({"batch", "--manifest", path("rows"), "--log", path("log")});
    EXPECT_EQ(program_.Files(), files);
}

// Shards share the set among them, whatever tells a process which one it is.
TEST_F(Batch, ShardsAreDisjointAndComplete) {
    MakePictures(20);
    Arguments report = {"batch", "--report"};
    std::multiset<std::string> done;
    for (const char* shard : {"1", "2", "3"}) {
        const std::string log = std::string("log") + shard;
        Arguments all = All();
        all[7] = program_.Path(log);
        if (shard[0] == '3') {
            setenv("SLURM_ARRAY_TASK_ID", "24", 1);
            setenv("SLURM_ARRAY_TASK_MIN", "20", 1);
            setenv("SLURM_ARRAY_TASK_MAX", "24", 1);
            setenv("SLURM_ARRAY_TASK_STEP", "2", 1);
            setenv("SLURM_ARRAY_TASK_COUNT", "3", 1);
        } else {
            all.insert(all.end(), {"--shard", std::string(shard) + "/3"});
        }
        Run(all);
        for (const std::string& output : Logged("done", log)) done.insert(output);
        report.push_back(program_.Path(log));
        Arguments in_json = report;
        in_json.push_back("--json");
        EXPECT_EQ(json::parse(Run(in_json, shard[0] == '3' ? 0 : 1).out)["done"], done.size());
    }
    setenv("SLURM_ARRAY_TASK_MAX", "27", 1);
    EXPECT_THAT(Run(All(), 2).err, HasSubstr("no even indices"));
    for (const char* end : {"ID", "MIN", "MAX", "STEP", "COUNT"}) {
        unsetenv((std::string("SLURM_ARRAY_TASK_") + end).c_str());
    }
    Run({"batch", "--report", program_.Path("no-log")}, 3);
    EXPECT_EQ(done.size(), 20U);
    EXPECT_EQ(std::set<std::string>(done.begin(), done.end()).size(), 20U);
    ExpectComplete(20);
}

// Killed at any moment and run again until it is through: everything is there, nothing was done
// twice that the log had as done, and nothing else lies about.
TEST_F(Batch, KillsCostNothing) {
    MakePictures(24, {120, 90});
    std::mt19937 random(5);
    for (int kill_count = 0; kill_count < 8; ++kill_count) {
        const pid_t child = program_.Start(All());
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 120));
        ::kill(child, SIGKILL);
        program_.Finish(child);
    }
    Run(All());
    ExpectComplete(24);
    const Arguments done = Logged("done");
    EXPECT_EQ(done.size(), 24U);
    EXPECT_EQ(std::set<std::string>(done.begin(), done.end()).size(), 24U);
}

TEST_F(Batch, ATornLogIsRepairedAndALockedOneIsRespected) {
    MakePictures(4);
    Run(All());
    const std::string whole = program_.Read("log");
    for (const std::size_t cut : {std::size_t{1}, whole.size() / 2, whole.size() - 1}) {
        program_.WriteText("log", whole.substr(0, cut));
        Run(All({"--overwrite"}));
        ExpectComplete(4);
        EXPECT_NO_THROW(Logged("done")) << "every line is JSON";
    }
    program_.WriteText("log", whole + "garbage\n");
    EXPECT_THAT(Run(All()).err, HasSubstr("1 lines cannot be read"));
    const int held = open(program_.Path("log").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    EXPECT_THAT(Run(All(), 5).err, HasSubstr("another batch is at work"));
    close(held);
}

// What is in hand is finished, and nothing else begun.
TEST_F(Batch, AnInterruptionWaitsForThePicturesInHand) {
    MakePictures(200, {200, 150});
    const pid_t child = program_.Start(All({"--jobs", "2"}));
    while (program_.Read("log").find("\"done\"") == std::string::npos) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ::kill(child, SIGINT);
    EXPECT_EQ(program_.Finish(child).status, 130);
    const Arguments begun = Logged("begun"), done = Logged("done");
    EXPECT_EQ(std::set<std::string>(begun.begin(), begun.end()),
              std::set<std::string>(done.begin(), done.end()));
    EXPECT_LT(done.size(), 200U);
    EXPECT_EQ(Files("out").size(), done.size());
}

}  // namespace
