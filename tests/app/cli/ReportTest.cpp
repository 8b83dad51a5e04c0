#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "app/cli/Program.h"

namespace {

using nlohmann::json;

TEST(List, GivesTheEffectsInOrder) {
    const Program program;
    const auto result = program.Run({"list", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const json rows = json::parse(result.out);
    ASSERT_FALSE(rows.empty());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i]["commandId"], 36001 + 2 * static_cast<int>(i));
        EXPECT_EQ(rows[i]["guid"].get<std::string>().size(), 36U);
    }
    EXPECT_EQ(rows[0]["name"], "Blinds");
    EXPECT_EQ(rows[0]["guid"], "4AEE87D5-19F6-4815-AA5E-F23631522E33");
    EXPECT_EQ(rows[1]["displayName"], "Fine Leather");
}

TEST(Describe, FollowsCanvasScaleAndLanguage) {
    const Program program;
    const auto parameter = [&](std::vector<std::string> arguments, int index) {
        arguments.insert(arguments.begin(), "describe");
        arguments.push_back("--json");
        const auto result = program.Run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return json::parse(result.out)["parameters"][static_cast<std::size_t>(index)];
    };
    EXPECT_EQ(parameter({"blinds"}, 0)["maximum"], 32767);
    EXPECT_EQ(parameter({"blinds", "--canvas", "300x1200"}, 0)["maximum"], 1200);
    EXPECT_EQ(parameter({"Weave", "--canvas", "40x30"}, 3)["default"], 20);
    EXPECT_EQ(parameter({"FineLeather", "--range-scale", "33"}, 3)["maximum"], 1330);
    EXPECT_EQ(parameter({"FineLeather"}, 2)["default"], "#DCDCDC");
    EXPECT_TRUE(parameter({"FineLeather"}, 2)["minimum"].is_null());
    const json shape = parameter({"Tiles"}, 10);
    EXPECT_EQ(shape["type"], "enumeration");
    EXPECT_EQ(shape["members"], json({"triangles", "squares", "hexagons"}));
    EXPECT_EQ(parameter({"Sculpture"}, 6)["type"], "string");
    const auto length = [&](const char* language) {
        return parameter({"Fur", "--language", language}, 2)["description"];
    };
    EXPECT_NE(length("DE"), length("en"));
    const auto described = program.Run({"describe", "Feines Leder", "--json"});
    const json roads = json::parse(described.out)["roads"];
    EXPECT_EQ(roads["gegl"], "cmdtexture:fine-leather");
    EXPECT_EQ(roads["python"], "cmdtexture.fine_leather");
    EXPECT_EQ(length("fr"),
              "Demi-longueur d’un poil en pixels, de son milieu à chacune de ses extrémités.");
}

TEST(Describe, TellsWhatAnEffectIsCalledElsewhere) {
    const std::string out = Program().Run({"describe", "fineleather"}).out;
    for (const char* name : {"cmdtexture:fine-leather\n", "cmdtexture.fine_leather\n"}) {
        EXPECT_NE(out.find(name), std::string::npos) << out;
    }
}

TEST(Presets, AreSavedShownListedAndApplied) {
    const Program program;
    const std::string image = program.WriteImage(
        "in.png", pictures::Make(ENPixelFormat::Colour8, 40, 30, [](int, int, int) { return 90; }));
    ASSERT_EQ(program.Run({"preset", "save", "Blinds", "Wide", "-p", "Width=33"}).status, 0);
    EXPECT_EQ(program.Run({"preset", "save", "Blinds", "Wide"}).status, 5);
    EXPECT_EQ(program.Run({"preset", "list"}).out.substr(0, 12), "Blinds\tWide\n") << "first";
    const auto shown = program.Run({"preset", "show", "Blinds", "Wide"});
    EXPECT_EQ(json::parse(shown.out)["Width"], 33);
    const auto applied = program.Run({"apply", "Blinds", image, "-o", program.Path("out.png"),
                                      "--preset", "Wide", "-p", "Opacity=40", "--json"});
    ASSERT_EQ(applied.status, 0) << applied.err;
    const json report = json::parse(applied.out);
    EXPECT_EQ(report["parameters"]["Width"], 33);
    EXPECT_EQ(report["parameters"]["Opacity"], 40);
    EXPECT_EQ(report["layout"], "colour");
    EXPECT_EQ(report["depth"], 8);
    // What the report gives as parameters is a preset again.
    program.WriteText("again.json", report["parameters"].dump());
    EXPECT_EQ(program
                  .Run({"apply", "Blinds", image, "-o", program.Path("again.png"), "--preset",
                        program.Path("again.json")})
                  .status,
              0);
    EXPECT_EQ(pictures::Difference(program.ReadImage("again.png"), program.ReadImage("out.png")),
              "");
}

TEST(Help, IsThereForEverySubcommand) {
    const Program program;
    for (const std::string name : {"list", "describe", "apply", "gallery", "preset", "resources"}) {
        const auto result = program.Run({name, "--help"});
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_NE(result.out.find("Usage"), std::string::npos) << name;
    }
    EXPECT_EQ(program.Run({"--version"}).out.substr(0, 11), "cmdtexture ");
}

TEST(Resources, AreListedAndExtended) {
    const Program program;
    const json shipped = json::parse(program.Run({"resources", "--json"}).out);
    const auto count = [](const json& rows, const char* kind) {
        return std::count_if(rows.begin(), rows.end(),
                             [&](const json& row) { return row["kind"] == kind; });
    };
    EXPECT_GE(count(shipped, "pattern"), 16);
    EXPECT_GE(count(shipped, "texture"), 24);
    for (const json& row : shipped) {
        EXPECT_NE(row["category"], "") << row;
        EXPECT_EQ(row["width"], 2048) << row;
        EXPECT_EQ(row["height"], 2048) << row;
    }
    program.WriteImage("mine.png", pictures::Noise(ENPixelFormat::Grey8, 8, 8, 1));
    const json more =
        json::parse(program.Run({"resources", "--json", "--resources", program.Path("")}).out);
    EXPECT_EQ(more.size(), shipped.size() + 2) << "a plain folder serves both kinds";
}

// Pictures of the user's own, of any size; one that cannot be read is said and named.
TEST(Resources, OfTheUsersOwnAreUsedOrRefused) {
    const Program program;
    std::filesystem::create_directories(program.Path("own/rocks"));
    const auto even = [&](const std::string& name, int width, int height) {
        program.WriteImage("own/rocks/" + name, pictures::Make(ENPixelFormat::Grey8, width, height,
                                                               [](int, int, int) { return 90; }));
    };
    even("dot.png", 1, 1);
    even("vast.png", 8000, 8000);
    even("damaged.png", 40, 40);
    const std::string bytes = program.Read("own/rocks/damaged.png");
    program.WriteText("own/rocks/damaged.png", bytes.substr(0, bytes.size() - 16));
    const std::string in =
        program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Colour8, 40, 30, 1));
    for (const auto& [effect, parameter] :
         {std::pair("Sculpture", "PatternName"), std::pair("Texture", "TextureName")}) {
        const auto apply = [&, effect = effect, parameter = parameter](const std::string& name) {
            return program.Run({"apply", effect, in, "-o", program.Path(name + effect + ".png"),
                                "--resources", program.Path("own"), "-p", parameter + ("=" + name),
                                "-p", "Size=25"});
        };
        for (const char* name : {"dot", "vast"}) {
            const Program::Result run = apply(name);
            ASSERT_EQ(run.status, 0) << effect << run.err;
            EXPECT_EQ(program.ReadImage(std::string(name) + effect + ".png").GetWidth(), 40);
        }
        const Program::Result run = apply("damaged");
        EXPECT_EQ(run.status, 3) << effect;
        EXPECT_NE(run.err.find("own/rocks/damaged.png: is "), std::string::npos) << run.err;
        EXPECT_FALSE(
            std::filesystem::exists(program.Path(std::string("damaged") + effect + ".png")));
    }
    EXPECT_EQ(
        pictures::Difference(program.ReadImage("dotTexture.png"), program.ReadImage("in.png")), "")
        << "an even texture is flat";
}

}  // namespace

// Values that count pixels follow the picture; those given one by one, and plain presets, do not;
// a preset of the user's own hides one that ships.
TEST(Presets, FollowThePicturesSize) {
    const Program program;
    program.WriteText("scaled.json", R"({"Width": 100, "Opacity": 40,
        "$scale": {"pixels": 10000, "parameters": ["Width"]}})");
    program.WriteText("plain.json", R"({"Width": 100})");
    program.WriteText("wrong.json", R"({"Width": 9, "$scale": {"pixels": 0, "parameters": []}})");
    const auto width = [&](int side, std::vector<std::string> options) {
        const std::string in =
            program.WriteImage("in.png", pictures::Noise(ENPixelFormat::Grey8, side, side, 1));
        std::vector<std::string> all = {"apply",       "Blinds", in, "-o", program.Path("out.png"),
                                        "--overwrite", "--json"};
        all.insert(all.end(), options.begin(), options.end());
        const auto result = program.Run(all);
        return result.status == 0 ? json::parse(result.out)["parameters"]["Width"].get<int>()
                                  : -result.status;
    };
    const std::string scaled = program.Path("scaled.json");
    EXPECT_EQ(width(100, {"--preset", scaled}), 100);
    EXPECT_EQ(width(250, {"--preset", scaled}), 250);
    EXPECT_EQ(width(50, {"--preset", scaled}), 50);
    EXPECT_EQ(width(250, {"--preset", scaled, "-p", "Width=7"}), 7);
    EXPECT_EQ(width(250, {"--preset", program.Path("plain.json")}), 100);
    EXPECT_EQ(width(250, {"--preset", program.Path("wrong.json")}), -2);
    EXPECT_NE(width(250, {"--preset", "venetian"}), 33);
    ASSERT_EQ(program.Run({"preset", "save", "Blinds", "venetian", "-p", "Width=33"}).status, 0);
    EXPECT_EQ(width(250, {"--preset", "venetian"}), 33);
}

// A photograph whose light falls off and whose borders do not fit becomes one that tiles.
TEST(Resources, OfAPhotographAreSeamless) {
    const Program program;
    const std::string photo = program.WriteImage(
        "wall.png", pictures::Make(ENPixelFormat::Colour8, 211, 173, [](int x, int y, int) {
            return std::min(255, x + 12 * ((x / 9 + y / 7) % 3));
        }));
    const auto add = [&](const std::string& kind) {
        return program.Run(
            {"resources", "add", photo, "--as", kind, "--category", "mine", "--seamless"});
    };
    for (const std::string kind : {"texture", "pattern"}) {
        ASSERT_EQ(add(kind).status, 0);
        EXPECT_EQ(add(kind).status, 5) << "there is one already";
        const CRowIteratorBands made =
            program.ReadImage("data/cmdtexture/resources/" + kind + "s/mine/wall.png");
        EXPECT_EQ(made.GetPixelFormat(), kind == "texture" ? CNPixelFormat(ENPixelFormat::Grey16)
                                                           : CNPixelFormat(ENPixelFormat::Colour8));
        const int last = made.GetWidth() - 1;
        // From the last column to the first no more changes than between any two of the middle.
        const auto change = [&](int x, int next) {
            double sum = 0;
            for (int y = 0; y < made.GetHeight(); ++y) {
                sum +=
                    std::abs(pictures::Sample(made, x, y, 0) - pictures::Sample(made, next, y, 0));
            }
            return sum;
        };
        double most = 0;
        for (int x = 0; x < last; ++x) most = std::max(most, change(x, x + 1));
        EXPECT_LE(change(last, 0), 1.2 * most) << kind;
    }
    EXPECT_EQ(program.Run({"resources", "remove", "wall"}).status, 2) << "which of the two?";
    EXPECT_EQ(program.Run({"resources", "remove", "wall", "--as", "texture"}).status, 0);
    EXPECT_EQ(program.Run({"resources", "remove", "wall"}).status, 0);
    EXPECT_EQ(program.Run({"resources", "show", "wall"}).status, 2);
    EXPECT_EQ(program.Run({"resources", "remove", "brick"}).status, 5) << "it ships";
    EXPECT_EQ(program.Run({"resources", "add", photo, "--as", "texture", "--name", "a/b"}).status,
              2);
}
