#include <gtest/gtest.h>

#include "app/cli/Program.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Make;
using pictures::Noise;
using pictures::Sample;

const std::vector<std::string> kEffects = {
    "Blinds",        "FineLeather",  "Fur",       "MosaicAntique", "MosaicGlass",
    "PolishedStone", "RoughLeather", "Sandstone", "Sculpture",     "SoftPlastic",
    "StrawWall",     "Texture",      "Tiles",     "Weave"};

class Apply : public ::testing::Test {
  protected:
    // Applies an effect to in.png; the result is out.png unless the arguments say otherwise.
    Program::Result Run(const std::string& effect, std::vector<std::string> more = {},
                        const std::string& in = "in.png", const std::string& out = "out.png") {
        std::vector<std::string> all = {
            "apply", effect, program_.Path(in), "-o", program_.Path(out), "--overwrite"};
        all.insert(all.end(), more.begin(), more.end());
        auto result = program_.Run(all);
        EXPECT_EQ(result.status, 0) << effect << ": " << result.err;
        return result;
    }
    Program program_;
};

TEST_F(Apply, BlindsGiveTheirWorkedValues) {
    program_.WriteImage("in.png",
                        Make(ENPixelFormat::Colour8, 4, 1, [](int, int, int) { return 200; }));
    struct {
        const char *colour, *opacity;
        int expected[4];
    } const cases[] = {{"#000000", "100", {0, 66, 133, 200}},
                       {"#000000", "50", {100, 134, 167, 200}},
                       {"#FFFFFF", "100", {255, 237, 219, 200}}};
    for (const auto& [colour, opacity, expected] : cases) {
        Run("Blinds",
            {"-p", "Width=4", "-p", "Horizontal=false", "-p", "LightFromLeftTop=false", "-p",
             std::string("Color=") + colour, "-p", std::string("Opacity=") + opacity});
        const auto out = program_.ReadImage("out.png");
        for (int x = 0; x < 4; ++x) EXPECT_EQ(Sample(out, x, 0, 1), expected[x]) << colour << x;
    }
}

TEST_F(Apply, PixelsOnTheDiskAreTheSame) {
    program_.WriteImage("in.png", Noise(ENPixelFormat::Colour8, 701, 604, 5));
    for (const std::string& effect : kEffects) {
        Run(effect, {}, "in.png", "memory.png");
        Run(effect, {"--max-memory", "1K", "--scratch", program_.Path(".")}, "in.png", "disk.png");
        EXPECT_EQ(program_.Read("memory.png"), program_.Read("disk.png")) << effect;
    }
}

// What a recipe does is what its steps do, and a dry run tells of it and does nothing.
TEST_F(Apply, TakesRecipes) {
    program_.WriteImage("in.png", Noise(ENPixelFormat::Colour16, 61, 40, 5));
    program_.WriteImage("mask.png", Noise(ENPixelFormat::Grey8, 61, 40, 6));
    program_.WriteImage("small.png", Noise(ENPixelFormat::Grey8, 60, 40, 6));
    program_.WriteText("recipe.json", R"([{"effect": "Tiles", "parameters": {"TileSize": 9}},
                                          {"effect": "Fur", "mask": "mask.png"}])");
    Run("Tiles", {"-p", "TileSize=9"}, "in.png", "tiles.png");
    Run("Fur", {"--mask", program_.Path("mask.png")}, "tiles.png", "fur.png");
    const auto files = program_.Files();
    const std::vector<std::string> apply = {"apply",
                                            "--recipe",
                                            program_.Path("recipe.json"),
                                            program_.Path("in.png"),
                                            "-o",
                                            program_.Path("out.png"),
                                            "--json"};
    auto dry = apply;
    dry.emplace_back("--dry-run");
    EXPECT_EQ(program_.Run(dry).status, 0);
    EXPECT_EQ(program_.Files(), files);
    const auto result = program_.Run(apply);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(program_.Read("out.png"), program_.Read("fur.png"));
    EXPECT_NE(result.out.find("\"steps\""), std::string::npos) << result.out;

    // What a dry run finds is what the run would find.
    program_.WriteText("recipe.json", R"([{"effect": "Fur", "mask": "small.png"}])");
    dry[5] = program_.Path("other.png");
    EXPECT_EQ(program_.Run(dry).status, 2);
    dry[3] = program_.Path("nix.png");
    EXPECT_EQ(program_.Run(dry).status, 3);
}

// A cut-out placed on the canvas comes out as that part of the whole.
TEST_F(Apply, PatternsAreAnchoredToTheCanvas) {
    const auto whole = Noise(ENPixelFormat::Colour8, 60, 50, 3);
    const CRect part{13, 9, 44, 41};
    program_.WriteImage("whole.png", whole);
    program_.WriteImage("in.png", Make(ENPixelFormat::Colour8, part.Width(), part.Height(),
                                       [&](int x, int y, int c) {
                                           return Sample(whole, part.left + x, part.top + y, c);
                                       }));
    struct {
        std::string effect;
        std::vector<std::string> values;
    } const cases[] = {{"Blinds", {"-p", "Width=7"}},
                       {"Blinds", {"-p", "Width=11", "-p", "Horizontal=false"}},
                       {"Weave", {"-p", "WeaveWidth=5", "-p", "GapWidth=3"}}};
    for (const auto& [effect, values] : cases) {
        Run(effect, values, "whole.png", "whole-out.png");
        auto placed = values;
        placed.insert(placed.end(), {"--canvas", "60x50", "--at", "13,9"});
        Run(effect, placed);
        const auto result = program_.ReadImage("whole-out.png");
        EXPECT_EQ(Difference(program_.ReadImage("out.png"),
                             Make(ENPixelFormat::Colour8, part.Width(), part.Height(),
                                  [&](int x, int y, int c) {
                                      return Sample(result, part.left + x, part.top + y, c);
                                  })),
                  "")
            << effect;
    }
}

// Under a black mask nothing changes, in any format; under a white one everything does.
TEST_F(Apply, AMaskLimitsTheEffect) {
    program_.WriteImage("black.png",
                        Make(ENPixelFormat::Grey8, 21, 17, [](int, int, int) { return 0; }));
    program_.WriteImage("white.png",
                        Make(ENPixelFormat::Grey16, 21, 17, [](int, int, int) { return 65535; }));
    for (const std::string kind : {".png", ".tif"}) {
        for (const ENPixelFormat format : kAllFormats) {
            const auto source = Noise(format, 21, 17, 8);
            program_.WriteImage("in" + kind, source);
            Run("Blinds", {"--mask", program_.Path("black.png")}, "in" + kind, "out" + kind);
            EXPECT_EQ(Difference(program_.ReadImage("out" + kind), source), "") << kind;
            Run("Blinds", {"--mask", program_.Path("white.png")}, "in" + kind, "masked" + kind);
            Run("Blinds", {}, "in" + kind, "out" + kind);
            EXPECT_EQ(
                Difference(program_.ReadImage("out" + kind), program_.ReadImage("masked" + kind)),
                "");
        }
    }
}

// Every effect runs on every format and keeps it. Where nothing is blurred, alpha stays what
// it is, or was nearby.
TEST_F(Apply, EveryEffectTakesEveryFormat) {
    for (const std::string& effect : kEffects) {
        for (const ENPixelFormat format : kAllFormats) {
            const CNPixelFormat kind = format;
            const auto source = Noise(format, 33, 29, 11);
            program_.WriteImage("in.png", source);
            const std::string parameter = effect == "Weave"              ? "WeaveWidth=6"
                                          : effect == "Blinds"           ? "Width=9"
                                          : effect == "Tiles"            ? "Depth=2"
                                          : effect.starts_with("Mosaic") ? "GroutWidth=1"
                                          : effect == "Texture"          ? "Depth=2"
                                          : effect == "Sculpture"        ? "Depth=2"
                                                                         : "Blur=0";
            Run(effect, {"-p", parameter});
            const auto out = program_.ReadImage("out.png");
            ASSERT_EQ(out.GetPixelFormat(), kind) << effect;
            EXPECT_NE(Difference(out, source), "") << effect << " did nothing";
            if (!kind.IsAlphaChannelPresent()) continue;
            const int alpha = kind.Channels() - 1;
            // A relief takes it from the row below in colour, the glass of Rough Leather from
            // anywhere in the column.
            const bool material = parameter.starts_with("Blur") && effect != "Fur";
            const int below = material && kind.ColourChannels() == 3 ? 1 : 0;
            for (int i = 0; i < 33 * 29; ++i) {
                const int x = i % 33, y = i / 33;
                bool kept = false;
                for (int from = 0; from < 29; ++from) {
                    const bool candidate =
                        effect == "RoughLeather" || (from >= y && from <= y + below);
                    kept = kept || (candidate &&
                                    Sample(out, x, y, alpha) == Sample(source, x, from, alpha));
                }
                ASSERT_TRUE(kept) << effect << " " << pictures::Name(kind) << " " << x << ", " << y;
            }
        }
    }
}

TEST_F(Apply, OddNamesAreNames) {
    const auto source = Noise(ENPixelFormat::Colour8, 5, 5, 1);
    for (const std::string name :
         {"a[b=1].png", "line\nfeed.png", "50%d.png", "png:x.png", "\xff.png"}) {
        program_.WriteImage(name, source);
        Run("Blinds", {"--json"}, name, "out-" + name);
        EXPECT_EQ(program_.ReadImage("out-" + name).GetWidth(), 5);
    }
}

TEST_F(Apply, TheGalleryShowsEveryEffect) {
    program_.WriteImage("in.png", Noise(ENPixelFormat::Colour8, 40, 30, 2));
    const auto result =
        program_.Run({"gallery", program_.Path("in.png"), "-d", program_.Path("g")});
    ASSERT_EQ(result.status, 0) << result.err;
    for (const std::string& effect : kEffects) {
        EXPECT_EQ(program_.ReadImage("g/" + effect + ".png").GetWidth(), 40) << effect;
    }
    EXPECT_GT(program_.ReadImage("g/contact-sheet.png").GetWidth(), 1000);
    EXPECT_EQ(program_.Run({"gallery", program_.Path("in.png"), "-d", program_.Path("g")}).status,
              5);
}

TEST_F(Apply, TheGalleryShowsPresetsOfOneEffect) {
    program_.WriteImage("in.png", Noise(ENPixelFormat::Colour8, 40, 30, 2));
    const auto gallery = [&](const std::vector<std::string>& presets) {
        std::vector<std::string> arguments = {
            "gallery", program_.Path("in.png"),   "-d", program_.Path("g"), "--effect", "blinds",
            "--sheet", program_.Path("sheet.jpg")};
        for (const std::string& preset : presets) {
            arguments.insert(arguments.end(), {"--preset", program_.Path(preset)});
        }
        return program_.Run(arguments).status;
    };
    program_.WriteText("wide.json", R"({"Width": 30})");
    program_.WriteText("wrong.json", R"({"Width": 31000})");
    EXPECT_EQ(gallery({"wide.json", "wide.json"}), 2) << "two pictures of one name";
    EXPECT_EQ(gallery({"wide.json", "wrong.json"}), 2);
    EXPECT_FALSE(std::filesystem::exists(program_.Path("g")));
    ASSERT_EQ(gallery({"wide.json"}), 0);
    EXPECT_EQ(program_.ReadImage("sheet.jpg").GetWidth(), 964) << "three pictures";
    program_.Run({"apply", "Blinds", program_.Path("in.png"), "-o", program_.Path("one.png"), "-p",
                  "Width=30"});
    EXPECT_EQ(Difference(program_.ReadImage("g/Blinds-wide.png"), program_.ReadImage("one.png")),
              "");
}

}  // namespace
