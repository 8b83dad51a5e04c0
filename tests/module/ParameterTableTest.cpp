#include <gtest/gtest.h>

#include "hostlib/parameters/ParameterValues.h"
#include "hostlib/settings/GlobalSettings.h"
#include "module/ParameterTable.h"
#include "support/LoadedModule.h"

namespace {

// What presets, scripts and users rely on: every parameter's name, range and default, in the order
// of its index. A change here breaks stored presets.
const std::map<std::string, std::string> kPromised = {
    {"Blinds",
     "Width 2..32767=20; Opacity 1..100=100; Horizontal true; LightFromLeftTop true; Color "
     "#000000"},
    {"FineLeather",
     "Angle 0..359=30; Blur 0..100=40; Color #DCDCDC; FurrowCount 1..1000=40; FurrowLength "
     "1..10=4; Transparency 0..255=250"},
    {"Fur", "Blur 0..100=25; Density 1..100=90; Length 1..100=11; Transparency 0..255=44"},
    {"MosaicAntique",
     "GroutWidth 0..10=2; TileDiffusion 0..100=70; Symmetric true; NumRows 25..100=50; NumColumns "
     "25..100=50; GroutDiffusion 0..100=50; FillColor #000000"},
    {"MosaicGlass",
     "NumRows 25..100=50; NumColumns 25..100=50; GroutWidth 0..10=2; Symmetric true; "
     "GroutDiffusion 0..100=50; GlassCurvature 0..100=50; EdgeCurvature 0..100=0; FillColor "
     "#000000"},
    {"PolishedStone",
     "Angle 0..359=45; Blur 0..100=20; Color #FFFFFF; Detail 1..256=145; Polishing 10..20=15"},
    {"RoughLeather",
     "Angle 0..359=45; Blur 0..100=10; Contrast 0..100=5; LeatherColor #000000; LightColor "
     "#FFFFFF; Luminance -255..255=135; Sharpness 0..100=14"},
    {"Sandstone",
     "Angle 0..359=45; Blur 0..100=20; Color #FFFFFF; Detail 1..256=80; Luminance 10..20=13"},
    {"Sculpture",
     "Ambience -100..100=0; Angle 0..360=315; Color #FFFFFF; Depth 1..100=20; Elevation 1..90=30; "
     "Intensity 1..100=50; PatternName \"\"; Shininess 0..100=0; Size 25..400=100; Smoothness "
     "0..100=0; Category \"\"; PatternView of ResourceListView=1"},
    {"SoftPlastic",
     "Angle 0..359=45; Blur 0..100=20; Color #FFFFFF; Density 1..128=32; Detail 1..100=14"},
    {"StrawWall",
     "Angle 0..359=100; Blur 0..100=40; Color #555555; Density 1..100=15; Length 1..20=14; "
     "Transparency 0..255=0; Width 1..40=1"},
    {"Texture",
     "Ambience -100..100=0; Angle 0..359=315; Color #FFFFFF; Depth 1..100=1; Elevation 1..90=30; "
     "Intensity 1..100=50; Shininess 0..100=0; Size 25..400=100; Smoothness 0..100=0; TextureName "
     "\"\"; Category \"\"; TextureView of ResourceListView=1"},
    {"Tiles",
     "Ambience -100..100=0; Angle 0..359=315; BorderSize 1..10=1; Color #FFFFFF; Depth 1..100=1; "
     "Elevation 1..90=30; Intensity 1..100=50; Shininess 0..100=50; Smoothness 0..100=25; "
     "TileAngularity 0..100=75; TileShape of TileShape=2; TileSize 8..32=15"},
    {"Weave",
     "FillGaps true; GapColor #000000; WeaveColor #000000; WeaveWidth 1..32767=75; GapWidth "
     "1..32767=25; Opacity 1..100=100"},
};

std::string Summary(const IParameter& parameter) {
    const std::string name = ToUtf8(parameter.Name());
    const std::string value = parameters::ToText(parameter);
    switch (parameter.Type()) {
        case EParameterType::Integer:
            return name + " " + std::to_string(parameter.Minimum()) + ".." +
                   std::to_string(parameter.Maximum()) + "=" + value;
        case EParameterType::Enumeration:
            return name + " of " + ToUtf8(parameter.EnumType()) + "=" + value;
        case EParameterType::String:
            return name + " \"" + value + "\"";
        default:
            return name + " " + value;
    }
}

// The parameters of an effect on a canvas (0 x 0: without a document), by name.
std::map<std::string, TRef<IParameter>> Parameters(const LoadedModule& module,
                                                   const std::string& effect, CSize canvas = {}) {
    TRef<INGLGraphic> document;
    if (canvas.cx) document = new CDocument(canvas);
    const TRef<CExecutionContext> context(new CExecutionContext(document, {}, nullptr));
    const TRef<CCmdEffect> command = module->CreateCommand(effect);
    PrepareCommand(*command, context.Get());
    std::map<std::string, TRef<IParameter>> by_name;
    for (IParameter* parameter : parameters::All(*command->BoundRepository())) {
        by_name[ToUtf8(parameter->Name())] = parameter;
    }
    return by_name;
}

TEST(ParameterTable, KeepsItsPromises) {
    const LoadedModule module;
    ASSERT_EQ(module->Names().size(), kPromised.size());
    for (const std::string& name : module->Names()) {
        const TRef<CCmdEffect> command = module->CreateCommand(name);
        PrepareCommand(*command, nullptr);
        std::string all;
        for (const IParameter* parameter : parameters::All(*command->BoundRepository())) {
            all += (all.empty() ? "" : "; ") + Summary(*parameter);
        }
        EXPECT_EQ(all, kPromised.at(name));
    }
}

TEST(ParameterTable, FollowsTheCanvas) {
    const LoadedModule module;
    EXPECT_EQ(Parameters(module, "Blinds", {300, 1200})["Width"]->Maximum(), 1200);
    struct {
        CSize canvas;
        int weave, gap, maximum;
    } const cases[] = {{{40, 30}, 20, 25, 40},
                       {{200, 60}, 30, 25, 200},
                       {{1, 1}, 0, 0, 1},
                       {{20, 300}, 10, 10, 300},
                       {{75, 75}, 75, 25, 75}};
    for (const auto& [canvas, weave, gap, maximum] : cases) {
        auto parameters = Parameters(module, "Weave", canvas);
        EXPECT_EQ(parameters["WeaveWidth"]->DefaultNumber(), weave) << canvas.cx;
        EXPECT_EQ(parameters["GapWidth"]->DefaultNumber(), gap) << canvas.cx;
        EXPECT_EQ(parameters["GapWidth"]->Maximum(), maximum) << canvas.cx;
    }
}

TEST(ParameterTable, FollowsTheRangeScale) {
    const LoadedModule module;
    struct {
        int percent;
        bool on;
        int count, length, density;
    } const cases[] = {{50, false, 1000, 10, 100},
                       {50, true, 1500, 15, 150},
                       {33, true, 1330, 13, 133},
                       {-50, true, 500, 5, 50},
                       {900, true, 10000, 100, 1000},
                       {INT32_MAX, true, 10000, 100, 1000},  // the host bounds the setting
                       {-100, true, 10, 0, 1}};
    for (const auto& [percent, on, count, length, density] : cases) {
        SetRangeScale(percent, on);
        auto leather = Parameters(module, "FineLeather");
        EXPECT_EQ(leather["FurrowCount"]->Maximum(), count) << percent;
        EXPECT_EQ(leather["FurrowLength"]->Maximum(), length) << percent;
        EXPECT_EQ(leather["Blur"]->Maximum(), 100) << percent;
        EXPECT_EQ(Parameters(module, "Fur")["Density"]->Maximum(), density) << percent;
        EXPECT_EQ(Parameters(module, "Fur")["Density"]->DefaultNumber(), 90) << percent;
    }
    SetRangeScale(0, false);
}

}  // namespace
