#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "app/cli/Program.h"

namespace {

using nlohmann::json;
using testing::ContainsRegex;
using testing::Not;

// What is mistyped, and what is probably meant.
TEST(CommandLine, SuggestsWhatWasMeant) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 20, 20, 1));
    const auto apply = [&](const char* effect, const char* value) {
        return std::vector<std::string>{"apply", effect, in, "-o", program.Path("out.png"),
                                        "-p",    value};
    };
    const struct {
        std::vector<std::string> arguments;
        std::string message;
    } kCases[] = {
        {{"aply", in}, "unknown subcommand \"aply\"\nhint: did you mean \"apply\"?"},
        {{"preset", "delet"}, "\"delete\""},
        {{"help", "preset", "sav"}, "\"save\""},
        {{"apply", "Fur", in, "--overwrit"}, "unknown option --overwrit\nhint: did you mean \"--o"},
        {{"list", "one", "two", "three"}, "unexpected arguments: one two three\n"},
        {{"preset", "rename", "Fur"}, "missing: NAME, NEW\n"},
        {{"apply", "Fur", in, "-o"}, "--output needs a value"},
        {{"apply", "Fur", in, "-o", "a.png", "-o", "b.png"}, "--output is given more than once"},
        {{"apply", "Fur", in, "-o", "a.png", "--quiet", "--progress"}, "exclude each other"},
        {{"gallery", in, "-d", "g", "--preset", "Long"}, "together with --effect"},
        {{"describe", "Fur", "--range-scale", "1000"}, "1000 is not a whole number from -99 to 9"},
        {{"apply", "Fur", in, "-o", "a.png", "--max-memory", "1X"}, "1X is not a size"},
        {{"apply", "Fur", in, "-o", "a.png", "--timeout", "soon"}, "soon is not a number of sec"},
        {{"resources", "add", in, "--as", "patern"}, "did you mean \"pattern\"?"},
        {{"resources", "show", "marbel"}, "did you mean \"marble\"?"},
        {{"preset", "show", "Tiles", "Honeycom"}, "\"honeycomb\""},
        {{"preset", "show", "Tiles", "qqqq"}, "there are bathroom"},
        {apply("Tiles", "TileShape=sqares"), "did you mean \"squares\"?"},
        {apply("Blinds", "Color=tomatoe"), "did you mean \"tomato\"?"},
        {apply("Sculpture", "PatternName=Brick"), "\"Brick\" is a texture"},
        {apply("Texture", "TextureName=marble"), "\"marble\" is a pattern"},
        {apply("Texture", "TextureName=no-such"), "\"cmdtexture resources\" lists them"},
    };
    for (const auto& [arguments, message] : kCases) {
        const auto run = program.Run(arguments);
        EXPECT_EQ(run.status, 2) << message;
        EXPECT_NE(run.err.find(message), std::string::npos) << message << '\n' << run.err;
    }
}

// A file may be called like a subcommand.
TEST(CommandLine, TakesColoursAndFilesOfAnyName) {
    const Program program;
    const CRowIteratorBands noise = pictures::Noise(ENPixelFormat::Colour8, 20, 20, 1);
    std::filesystem::rename(program.WriteImage("list.png", noise), program.Path("list"));
    for (const char* colour : {"#f00", "F00", "ff0000", "#Ff0000", "Red"}) {
        const auto run = program.Run({"--language=EN", "--json", "apply", "blinds",
                                      program.Path("list"), "-o", program.Path("out.png"),
                                      "--overwrite", "-p", std::string("Color=") + colour});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(json::parse(run.out)["parameters"]["Color"], "#FF0000") << colour;
    }
    const auto help = program.Run({"help", "preset", "save"});
    EXPECT_EQ(help.out, program.Run({"preset", "save", "--help"}).out);
    EXPECT_EQ(program.Run({"preset", "show", "Blinds", "list"}).status, 2);
}

// With --json, standard output is one value, and every message a line with an object.
TEST(CommandLine, SaysErrorsAndWarningsAsJson) {
    const Program program;
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour16, 20, 20, 1));
    const std::string none = program.Path("none.png"), out = program.Path("out.jpg");
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string kind;
    } kCases[] = {
        {{"list", "more"}, 2, "usage"},
        {{"describe", "Sandston"}, 2, "usage"},
        {{"apply", "Fur", none, "-o", out}, 3, "unreadable"},
        {{"apply", "Fur", in, "-o", out, "--max-pixels", "9"}, 6, "limit"},
        {{"apply", "Fur", in, "-o", "no/such/folder/o.png"}, 5, "output"},
        {{"edit", "Fur", none}, 3, "unreadable"},
        {{"gallery", none, "-d", program.Path("g")}, 3, "unreadable"},
        {{"preset", "list", "Sandston"}, 2, "usage"},
        {{"preset", "delete", "Tiles", "Honeycomb"}, 2, "usage"},
        {{"resources", "show", "marbel"}, 2, "usage"},
        {{"resources", "add", none, "--as", "texture"}, 3, "unreadable"},
        {{"frob"}, 2, "usage"},
    };
    for (auto [arguments, status, kind] : kCases) {
        arguments.emplace_back("--json");
        const auto run = program.Run(arguments);
        EXPECT_EQ(run.status, status) << run.err;
        const json value = json::parse(run.out);
        EXPECT_EQ(value["error"]["kind"], kind) << run.out;
        EXPECT_EQ(value["error"]["status"], status);
        EXPECT_EQ(json::parse(run.err), value["error"]) << arguments[0];
    }
    const auto warned = program.Run({"apply", "Weave", in, "-o", out, "--json"});
    ASSERT_EQ(warned.status, 0) << warned.err;
    const json warnings = json::parse(warned.out)["warnings"];
    ASSERT_EQ(warnings.size(), 2U) << "8-bit arithmetic, and JPEG's 8 bits";
    EXPECT_EQ(json::parse(warned.err.substr(0, warned.err.find('\n'))), warnings[0]);
}

TEST(CommandLine, MovesPresets) {
    const Program program;
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "preset");
        return program.Run(arguments);
    };
    const auto width = [&](const std::string& name) {
        const auto shown = run({"show", "Blinds", name});
        return shown.status == 0 ? json::parse(shown.out)["Width"].get<int>() : 0;
    };
    ASSERT_EQ(run({"save", "Blinds", "Wide", "-p", "Width=33"}).status, 0);
    ASSERT_EQ(run({"rename", "Blinds", "Wide", "Wider"}).status, 0);
    EXPECT_EQ(width("Wide"), 0);
    EXPECT_EQ(width("Wider"), 33);
    ASSERT_EQ(run({"save", "Blinds", "Thin", "-p", "Width=3"}).status, 0);
    EXPECT_EQ(run({"rename", "Blinds", "Thin", "Wider"}).status, 5) << "there is one";
    EXPECT_EQ(run({"rename", "Blinds", "Thin", "a/b"}).status, 2);
    EXPECT_EQ(width("Wider"), 33);
    EXPECT_EQ(width("Thin"), 3) << "a rename that fails loses nothing";

    // What leaves comes back, values that follow the picture included.
    const std::string file = program.Path("louvres.json");
    ASSERT_EQ(run({"export", "Blinds", "vertical-louvres", "-o", file}).status, 0);
    EXPECT_EQ(run({"export", "Blinds", "Wider", "-o", file}).status, 5);
    ASSERT_EQ(run({"import", "blinds", file}).status, 0);
    const auto exported = run({"export", "Blinds", "louvres"});
    EXPECT_EQ(json::parse(exported.out), json::parse(program.Read("louvres.json")));
    EXPECT_TRUE(json::parse(exported.out).contains("$scale"));
    EXPECT_EQ(run({"import", "Fur", file}).status, 2) << "of another effect";
    EXPECT_EQ(run({"import", "Blinds", program.Path("none.json")}).status, 2);

    EXPECT_EQ(run({"delete", "Blinds", "Wider"}).status, 0);
    EXPECT_EQ(width("Wider"), 0);
    EXPECT_EQ(run({"delete", "Blinds", "vertical-louvres"}).status, 2) << "it ships";
}

// Text that stands outside all ⟦ ⟧.
std::string Outside(const std::string& text) {
    const std::string open = "⟦", close = "⟧";
    std::string outside;
    int depth = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (text.compare(i, open.size(), open) == 0) {
            ++depth;
            i += open.size();
        } else if (text.compare(i, close.size(), close) == 0) {
            --depth;
            i += close.size();
        } else {
            if (depth == 0) outside += text[i];
            ++i;
        }
    }
    return outside;
}

// A language that puts every message into brackets shows what never passed a translator.
TEST(CommandLine, SaysNothingUntranslated) {
    const Program program;
    namespace fs = std::filesystem;
    const fs::path real = fs::path(PROGRAM).parent_path().parent_path();
    const fs::path data = fs::path(program.Path("home")) / "share/cmdtexture";
    fs::create_directories(data / "Languages/QQ");
    fs::create_directory_symlink(real / "lib", program.Path("home/lib"));
    for (const char* part : {"presets", "resources", "Languages/EN", "Languages/DE"}) {
        fs::create_directory_symlink(real / "share/cmdtexture" / part, data / part);
    }
    const auto read = [&](const char* file) {
        return json::parse(program.Read("home/share/cmdtexture/Languages/" + std::string(file)));
    };
    const auto write = [&](const char* file, const json& content) {
        program.WriteText("home/share/cmdtexture/Languages/QQ/" + std::string(file),
                          content.dump());
    };
    json module = read("EN/CmdTexturerc.dll"), messages;
    const json german = read("DE/messages.json");
    module["language"] = "QQ";
    write("CmdTexturerc.dll", module);
    for (const auto& [english, text] : german.items()) {
        messages[english] = "⟦" + english + "⟧";
    }
    write("messages.json", messages);
    setenv("CMDTEXTURE_HOME", program.Path("home").c_str(), 1);

    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour16, 20, 20, 1));
    const std::string thin =
        program.WriteImage("thin.png", pictures::Noise(ENPixelFormat::Grey8, 1, 9, 1));
    program.WriteText("cut.png", program.Read("in.png").substr(0, 300));
    program.WriteText("broken.json", "{\"Width\": ");
    program.WriteText("recipe.json", R"([{"effect": "Fur", "blend": "bright"}])");
    const std::string out = program.Path("out.jpg");
    std::vector<std::vector<std::string>> lines = {
        {},
        {"frob"},
        {"list", "x", "y"},
        {"apply", "Fur", in, "--frob"},
        {"apply", "Fur", in, "-o"},
        {"apply", "Sandston", in, "-o", out},
        {"apply", "Fur", in, "-o", out, "--quality", "0"},
        {"apply", "Fur", in, "-o", out, "--canvas", "1"},
        {"apply", "Fur", in, "-o", out, "--at", "1"},
        {"apply", "Fur", in, "-o", out, "-p", "x"},
        {"apply", "Tiles", in, "-o", out, "-p", "TileShape=x"},
        {"apply", "Tiles", in, "-o", out, "-p", "Color=x"},
        {"apply", "Tiles", in, "-o", out, "-p", "TileSize=x"},
        {"apply", "Sculpture", in, "-o", out, "-p", "PatternName=x"},
        {"apply", "Texture", in, "-o", out, "-p", "Category=x"},
        {"apply", "Blinds", in, "-o", out, "--preset", program.Path("broken.json")},
        {"apply", "Blinds", in, "-o", out, "--preset", "none"},
        {"apply", "--recipe", program.Path("recipe.json"), in, "-o", out},
        {"apply", "Fur", in, "-o", out, "--mask", thin},
        {"apply", "Fur", program.Path("none.png"), "-o", out},
        {"apply", "Fur", program.Path(""), "-o", out},
        {"apply", "Fur", program.Path("cut.png"), "-o", out, "--lenient"},
        {"apply", "Fur", in, "-o", in},
        {"apply", "Fur", in, "-o", "/proc/x.png"},
        {"apply", "Fur", in, "-o", program.Path("x.xyz")},
        {"apply", "Fur", in, "-o", out, "--max-pixels", "9"},
        {"apply", "Weave", in, "-o", out},
        {"apply", "Weave", thin, "-o", program.Path("thin2.png")},
        {"apply", "Fur", in, "-o", out, "--dry-run", "--overwrite"},
        {"preset", "delete", "Tiles", "honeycomb"},
        {"preset", "save", "Tiles", "a/b"},
        {"resources", "show", "x"},
        {"resources", "add", thin, "--as", "texture"},
        {"gallery", in, "-d", in},
        {"--help"},
    };
    for (const char* command :
         {"list", "describe", "apply", "edit", "gallery", "preset", "resources", "batch", "help"}) {
        lines.push_back({command, "--help"});
    }
    for (const char* command : {"list", "show", "save", "delete", "rename", "import", "export"}) {
        lines.push_back({"preset", command, "--help"});
    }
    for (const char* command : {"add", "remove", "show"}) {
        lines.push_back({"resources", command, "--help"});
    }
    for (std::vector<std::string>& line : lines) {
        std::string shown;
        for (const std::string& word : line) shown += word + ' ';
        line.insert(line.end(), {"--language", "QQ"});
        const auto run = program.Run(line);
        const std::string said = run.out.starts_with('{') ? run.err : run.out + run.err;
        ASSERT_NE(said.find("⟦"), std::string::npos) << shown << said;
        EXPECT_THAT(Outside(said), Not(ContainsRegex("[a-z]{2,},? [a-z]{2,}"))) << shown;
    }
    unsetenv("CMDTEXTURE_HOME");
}

// A reader that has what it wants is no error: "list --json | head -1".
TEST(CommandLine, IsQuietWhenItsReaderGoesAway) {
    const Program program;
    for (const char* command : {"list --json", "--help", "resources"}) {
        const std::string line = std::string("\"") + PROGRAM + "\" " + command + " 2>\"" +
                                 program.Path("said") + "\" | true; exit ${PIPESTATUS[0]}";
        EXPECT_EQ(std::system(("bash -c '" + line + "'").c_str()), 0) << command;
        EXPECT_EQ(program.Read("said"), "") << command;
    }
}

}  // namespace
