#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "app/imagefile/CPictureFiles.h"
#include "hostlib/graphics/SelectionBlend.h"
#include "job/CJobLibrary.h"
#include "job/CRecipe.h"
#include "support/Pictures.h"

namespace {

using pictures::Difference;
using testing::HasSubstr;

class Recipe : public ::testing::Test {
  protected:
    Recipe() { std::filesystem::create_directories(folder_); }
    ~Recipe() override { std::filesystem::remove_all(folder_); }

    CRecipe Parse(const std::string& text) { return CRecipe::Parse(library_, text, folder_); }
    CRowIteratorBands Made(const std::string& text, const CRowIterator& selection = {}) {
        const SJobResult result = Parse(text).Run(photo_, selection);
        EXPECT_FALSE(result.error) << text << ": " << result.error->what();
        return result.image;
    }
    CRowIteratorBands Effect(const std::string& name, const CRowIteratorBands& picture,
                             const CRowIterator& selection = {}) {
        CEffectJob job = library_.MakeJob(name);
        job.SetPicture(picture, selection);
        return job.Run().image;
    }
    void WriteMask(const std::string& name, const CRowIteratorBands& mask) {
        imagefile::MakePictureFiles()->Write(folder_ / name, mask);
    }

    const std::filesystem::path folder_ =
        std::filesystem::path(::testing::TempDir()) / ("recipe-" + std::to_string(getpid()));
    const CJobLibrary library_{{.language = "EN", .pictures = imagefile::MakePictureFiles()}};
    const CRowIteratorBands photo_ = pictures::Noise(ENPixelFormat::ColourAlpha8, 48, 32, 5);
    const CRowIterator mask_ = pictures::Noise(ENPixelFormat::Grey8, 48, 32, 6);
};

// Each step works on what the one before it made; a run leaves the recipe as it was.
TEST_F(Recipe, StepsFollowOneAnother) {
    WriteMask("mask.png", mask_);
    const CRowIteratorBands stone = Effect("Sandstone", photo_);
    EXPECT_EQ(Difference(Made(R"([{"effect": "sandstone"}])"), stone), "");
    EXPECT_EQ(Difference(Made(R"([{"effect": "Sandstone"},
                                  {"effect": "Weave", "mask": "mask.png"}])"),
                         Effect("Weave", stone, mask_)),
              "");
    CRecipe again = Parse(R"([{"effect": "Fur", "parameters": {"Length": 9}, "opacity": "40%"}])");
    CRecipe copy = again.Copy();
    const CRowIteratorBands first = again.Run(photo_).image;
    EXPECT_EQ(Difference(again.Run(photo_).image, first), "");
    EXPECT_EQ(Difference(copy.Run(photo_).image, first), "");
}

// The selection limits what is mixed: outside of it the picture stays, whatever the mode.
TEST_F(Recipe, SelectionsLimitBlends) {
    for (const auto& [name, mode] : {std::pair("multiply", ENBlendMode::Multiply),
                                     std::pair("Soft Light", ENBlendMode::SoftLight),
                                     std::pair("luminosity", ENBlendMode::Luminosity)}) {
        CRowIteratorBands expected = Effect("Tiles", photo_);
        ASSERT_FALSE(BlendLayer(photo_, mode, 0.5, expected).Failed());
        ASSERT_FALSE(BlendBySelection(photo_, mask_, expected).Failed());
        const std::string recipe =
            std::string(R"([{"effect": "Tiles", "opacity": 0.5, "blend": ")") + name + "\"}]";
        EXPECT_EQ(Difference(Made(recipe, mask_), expected), "") << name;
    }
}

TEST_F(Recipe, TellsProgressOverAllStepsAndStops) {
    struct : IProgressSink {
        bool OnProgress(double fraction) override {
            EXPECT_GE(fraction, last);
            last = fraction;
            return fraction > stop_after;
        }
        double last = 0, stop_after = 2;
    } sink;
    CRecipe recipe = Parse(R"([{"effect": "Fur"}, {"effect": "Blinds"}, {"effect": "Weave"}])");
    EXPECT_FALSE(recipe.Run(photo_, {}, &sink).error);
    EXPECT_GT(sink.last, 0.95);
    sink.last = 0;
    sink.stop_after = 0.4;
    EXPECT_EQ(recipe.Run(photo_, {}, &sink).error->Fault(), EJobFault::Cancelled);
    EXPECT_LT(sink.last, 0.7);
}

// All of a recipe is judged before anything is done, and the message says which step.
TEST_F(Recipe, RefusalsSayWhereAndWhatWouldBeRight) {
    WriteMask("small.png", pictures::Noise(ENPixelFormat::Grey8, 4, 4, 6));
    const struct {
        std::string text, message, hint;
        EJobFault fault = EJobFault::Refused;
    } cases[] = {
        {"[", "not valid JSON", ""},
        {"[]", "no steps", "list"},
        {"{}", "no steps", "list"},
        {"[5]", "step 1: is not an object", ""},
        {R"([{"effect": "Fur"}, {"preset": "Long"}])", "step 2: names no effect", ""},
        {R"([{"effect": "Furr"}])", "Furr", "Fur", EJobFault::UnknownEffect},
        {R"([{"effect": "Fur", "opactiy": 1}])", "no \"opactiy\"", "opacity"},
        {R"([{"effect": "Fur", "opacity": 50}])", "opacity 50", "0 to 1"},
        {R"([{"effect": "Fur", "opacity": "101%"}])", "101%", "60%"},
        {R"([{"effect": "Fur", "opacity": true}])", "true", "0 to 1"},
        {R"([{"effect": "Fur", "blend": "burn"}])", "burn", "soft-light"},
        {R"([{"effect": "Fur", "preset": "None such"}])", "None such", "", EJobFault::Preset},
        {R"([{"effect": "Tiles", "parameters": {"TileSize": 1000}}])", "1000", ""},
        {R"([{"effect": "Sculpture", "parameters": {"PatternName": "nix"}}])", "nix", "",
         EJobFault::UnknownResource},
        {R"([{"effect": "Fur", "mask": "nix.png"}])", "nix.png", "", EJobFault::Unreadable}};
    for (const auto& [text, message, hint, fault] : cases) {
        try {
            Parse(text);
            ADD_FAILURE() << text;
        } catch (const CJobError& error) {
            EXPECT_THAT(error.what(), HasSubstr(message)) << text;
            EXPECT_THAT(error.Hint(), HasSubstr(hint)) << text;
            EXPECT_EQ(error.Fault(), fault) << text;
        }
    }
    const CRecipe masked = Parse(R"([{"effect": "Fur", "mask": "small.png"}])");
    EXPECT_THROW(masked.CheckMasks({48, 32}), CJobError);
    EXPECT_NO_THROW(masked.CheckMasks({4, 4}));
}

}  // namespace
