#include <set>

#include "EffectDialog.h"
#include "host/language/CConnectLanguage.h"
#include "hostlib/language/Languages.h"

namespace {

struct SBound {
    int id;
    const char* parameter;
};
struct SDialog {
    const char* effect;
    int template_id;
    std::vector<SBound> numbers, checks, swatches, dials, lists;
};

void PrintTo(const SDialog& dialog, std::ostream* out) { *out << dialog.effect; }

const std::vector<SDialog> kDialogs = {
    {"Blinds",
     207,
     {{1011, "Width"}, {1094, "Opacity"}},
     {{1212, "Horizontal"}, {1213, "LightFromLeftTop"}},
     {{1571, "Color"}},
     {},
     {}},
    {"Weave",
     561,
     {{1011, "WeaveWidth"}, {1568, "GapWidth"}, {1094, "Opacity"}},
     {{1569, "FillGaps"}},
     {{1570, "WeaveColor"}, {1571, "GapColor"}},
     {},
     {}},
    {"MosaicAntique",
     719,
     {{702, "GroutDiffusion"},
      {703, "GroutWidth"},
      {704, "NumColumns"},
      {705, "NumRows"},
      {707, "TileDiffusion"}},
     {{706, "Symmetric"}},
     {{708, "FillColor"}},
     {},
     {}},
    {"MosaicGlass",
     971,
     {{952, "EdgeCurvature"},
      {953, "GlassCurvature"},
      {954, "GroutDiffusion"},
      {955, "GroutWidth"},
      {956, "NumColumns"},
      {957, "NumRows"}},
     {{958, "Symmetric"}},
     {{960, "FillColor"}},
     {},
     {}},
    {"SoftPlastic",
     1218,
     {{2105, "Angle"}, {2100, "Blur"}, {2102, "Density"}, {2101, "Detail"}},
     {},
     {{2120, "Color"}},
     {{2140, "Angle"}},
     {}},
    {"StrawWall",
     1472,
     {{2105, "Angle"},
      {2100, "Blur"},
      {2101, "Density"},
      {2102, "Length"},
      {2104, "Transparency"},
      {2103, "Width"}},
     {},
     {{2120, "Color"}},
     {{2140, "Angle"}},
     {}},
    {"FineLeather",
     1720,
     {{1705, "Angle"},
      {1704, "Blur"},
      {1702, "FurrowCount"},
      {1703, "FurrowLength"},
      {1706, "Transparency"}},
     {},
     {{1709, "Color"}},
     {{1707, "Angle"}},
     {}},
    {"Fur",
     1966,
     {{1952, "Blur"}, {1953, "Density"}, {1954, "Length"}, {1955, "Transparency"}},
     {},
     {},
     {},
     {}},
    {"PolishedStone",
     2218,
     {{2203, "Angle"}, {2202, "Blur"}, {2204, "Detail"}, {2205, "Polishing"}},
     {},
     {{2207, "Color"}},
     {{2206, "Angle"}},
     {}},
    {"RoughLeather",
     2472,
     {{2456, "Angle"},
      {2455, "Blur"},
      {2453, "Contrast"},
      {2452, "Luminance"},
      {2454, "Sharpness"}},
     {},
     {{2459, "LeatherColor"}, {2458, "LightColor"}},
     {{2457, "Angle"}},
     {}},
    {"Sandstone",
     2718,
     {{2704, "Angle"}, {2702, "Blur"}, {2703, "Detail"}, {2705, "Luminance"}},
     {},
     {{2707, "Color"}},
     {{2706, "Angle"}},
     {}},
    {"Tiles",
     2982,
     {{2957, "Ambience"},
      {2961, "Angle"},
      {2954, "BorderSize"},
      {2956, "Depth"},
      {2963, "Elevation"},
      {2962, "Intensity"},
      {2958, "Shininess"},
      {2959, "Smoothness"},
      {2953, "TileAngularity"},
      {2955, "TileSize"}},
     {},
     {{2964, "Color"}},
     {{2960, "Angle"}},
     {{2952, "TileShape"}}},
    {"Texture",
     3228,
     {{3205, "Ambience"},
      {3207, "Angle"},
      {3204, "Depth"},
      {3209, "Elevation"},
      {3208, "Intensity"},
      {3206, "Shininess"},
      {3202, "Size"},
      {3203, "Smoothness"}},
     {},
     {{3211, "Color"}},
     {{3210, "Angle"}},
     {{3212, "TextureName"}}},
    {"Sculpture",
     3478,
     {{3482, "Ambience"},
      {3484, "Angle"},
      {3481, "Depth"},
      {3486, "Elevation"},
      {3485, "Intensity"},
      {3483, "Shininess"},
      {3479, "Size"},
      {3480, "Smoothness"}},
     {},
     {{3488, "Color"}},
     {{3487, "Angle"}},
     {{3489, "PatternName"}}},
};

class EveryDialog : public DialogTest, public testing::WithParamInterface<SDialog> {};
INSTANTIATE_TEST_SUITE_P(All, EveryDialog, testing::ValuesIn(kDialogs),
                         [](const auto& test) { return std::string(test.param.effect); });

// The two mosaics couple their counts, which is told apart in tests of their own.
bool Coupled(const std::string& parameter) {
    return parameter == "NumRows" || parameter == "NumColumns" || parameter == "Symmetric";
}

// Acts on a control that is bound to a parameter: it alone gets the value, with one preview.
template <class Action>
void ExpectStored(const EffectDialog& dialog, const std::string& parameter, std::int64_t value,
                  Action&& action) {
    auto expected = dialog.Values();
    EXPECT_EQ(dialog.PreviewsOf(action), 1) << parameter;
    EXPECT_EQ(dialog.Number(parameter), value) << parameter;
    expected[parameter] = parameters::ToJson(dialog.Parameter(parameter));
    if (!Coupled(parameter)) {
        EXPECT_EQ(dialog.Values(), expected) << parameter;
    }
}

void ExpectNothing(const EffectDialog& dialog, const std::function<void()>& action) {
    const auto before = dialog.Values();
    EXPECT_EQ(dialog.PreviewsOf(action), 0);
    EXPECT_EQ(dialog.Values(), before);
}

TEST_P(EveryDialog, StoresWhatIsTyped) {
    EffectDialog effect(GetParam().effect);
    effect.Play([&](IDialogModel& dialog) {
        for (const auto& [id, name] : GetParam().numbers) {
            SCOPED_TRACE(name);
            const IParameter& parameter = effect.Parameter(name);
            const auto type = [&, id = id](std::int64_t value) {
                return [&dialog, id, value] { dialog.Type(id, std::to_wstring(value)); };
            };
            const SControlState& field = dialog.Control(id);
            EXPECT_EQ(field.value, parameter.Number());
            EXPECT_EQ(field.minimum, parameter.Minimum());
            EXPECT_EQ(field.maximum, parameter.Maximum());
            const std::int64_t low =
                parameter.Minimum() + (parameter.Number() == parameter.Minimum());
            for (const std::int64_t value : {low, std::int64_t{parameter.Maximum()}}) {
                ExpectStored(effect, name, value, type(value));
                EXPECT_FALSE(field.wrong);
                ExpectNothing(effect, type(value));
            }
            for (const std::int64_t value :
                 {std::int64_t{parameter.Minimum()} - 1, std::int64_t{parameter.Maximum()} + 1}) {
                ExpectNothing(effect, type(value));
                EXPECT_TRUE(field.wrong);
                EXPECT_EQ(field.text, CString(std::to_wstring(value))) << "as it was typed";
            }
            ExpectStored(effect, name, low, type(low));
            ExpectStored(effect, name, low + 1, [&, id = id] { dialog.Step(id, 1); });
        }
    });
}

TEST_P(EveryDialog, StoresClicksAndColours) {
    EffectDialog effect(GetParam().effect);
    effect.Play([&](IDialogModel& dialog) {
        for (const auto& [id, name] : GetParam().checks) {
            if (Coupled(name)) continue;
            EXPECT_EQ(dialog.Control(id).value, effect.Number(name));
            for (int i = 0; i < 2; ++i) {
                ExpectStored(effect, name, 1 - effect.Number(name),
                             [&, id = id] { dialog.Click(id); });
            }
        }
        for (const auto& [id, name] : GetParam().swatches) {
            EXPECT_EQ(dialog.Control(id).colour, effect.Number(name));
            const auto pick = [&, id = id] { dialog.PickColour(id, 0x123456); };
            ExpectStored(effect, name, 0x123456, pick);
            ExpectNothing(effect, pick);
        }
    });
}

TEST_P(EveryDialog, TurnsTheDialWithItsField) {
    EffectDialog effect(GetParam().effect);
    effect.Play([&](IDialogModel& dialog) {
        for (const auto& [id, name] : GetParam().dials) {
            const int field = GetParam().effect == std::string("Tiles") ? 2961
                              : GetParam().numbers[0].parameter == std::string("Angle")
                                  ? GetParam().numbers[0].id
                                  : GetParam().numbers[1].id;
            EXPECT_EQ(dialog.Control(id).value, effect.Number("Angle"));
            ExpectStored(effect, name, 77, [&, id = id] { dialog.Turn(id, 77 - 360); });
            EXPECT_EQ(dialog.Control(field).text, L"77");
            ExpectNothing(effect, [&, id = id] { dialog.Turn(id, 77); });
            ExpectStored(effect, name, 200, [&] { dialog.Type(field, L"200"); });
            EXPECT_EQ(dialog.Control(id).value, 200);
        }
    });
}

TEST_P(EveryDialog, EndsWithOkOrCancel) {
    EffectDialog effect(GetParam().effect);
    EXPECT_FALSE(effect.Run([](IDialogModel& dialog) { dialog.Ok(); }).Failed());
    EXPECT_EQ(effect.Run([](IDialogModel& dialog) { dialog.Cancel(); }).Code(),
              TolmErrorCode::Cancelled);
    EXPECT_EQ(effect.Toolkit().Previews(), 0) << "opening and closing change nothing";
}

// The template has the controls of the table and no others, and every text in every language.
TEST_P(EveryDialog, HasItsTemplateInEveryLanguage) {
    const SDialog& row = GetParam();
    std::set<int> expected;
    for (const auto* bound : {&row.numbers, &row.checks, &row.swatches, &row.dials, &row.lists}) {
        for (const SBound& control : *bound) expected.insert(control.id);
    }
    std::map<std::string, CString> first_text;
    const std::filesystem::path data = FindInstallation().data;
    for (const std::string& code : languages::Available(data)) {
        EffectDialog effect(row.effect);
        languages::Select(data, code);
        effect.Play([&](IDialogModel& dialog) {
            EXPECT_EQ(dialog.Template().id, row.template_id);
            EXPECT_FALSE(dialog.Template().title.IsEmpty());
            std::set<int> found;
            for (const STemplateGroup& group : dialog.Template().groups) {
                for (const STemplateRow& line : group.rows) {
                    const SControlTemplate& control = line.controls.front();
                    const bool named = control.kind == EControlKind::Label ||
                                       !line.label.IsEmpty() || !control.text.IsEmpty();
                    EXPECT_TRUE(named) << control.id << " in " << code;
                    for (const SControlTemplate& each : line.controls) {
                        if (each.kind != EControlKind::Label) found.insert(each.id);
                    }
                    first_text.try_emplace(code, line.label);
                }
            }
            EXPECT_EQ(found, expected) << code;
        });
    }
    languages::Select(data, "EN");
    EXPECT_FALSE(first_text.at("EN").IsEmpty());
}

TEST_F(DialogTest, NoDialogIsMissingFromTheTable) {
    std::multiset<std::string> tested;
    for (const SDialog& dialog : kDialogs) tested.insert(dialog.effect);
    const std::vector<std::string>& names = EffectDialog::Module().Names();
    EXPECT_EQ(tested, std::multiset<std::string>(names.begin(), names.end()));
}

// What can stand in a number field, and what of it is a value.
TEST_F(DialogTest, FieldsTakeWholeNumbersOnly) {
    struct {
        const wchar_t* text;
        bool wrong;
        int value;
    } const cases[] = {{L"7", false, 7},    {L" 8 ", false, 8},  {L"+9", false, 9},
                       {L"", true, 9},      {L"-", true, 9},     {L"+-9", true, 9},
                       {L"12x", true, 9},   {L"1.5", true, 9},   {L"99999999999", true, 9},
                       {L"010", false, 10}, {L"0x10", true, 10}, {L"10", false, 10}};
    EffectDialog effect("Blinds");
    effect.Play([&](IDialogModel& dialog) {
        for (const auto& [text, wrong, value] : cases) {
            dialog.Type(1094, text);
            EXPECT_EQ(dialog.Control(1094).wrong, wrong) << ToUtf8(text);
            EXPECT_EQ(dialog.Control(1094).text, CString(text));
            EXPECT_EQ(effect.Number("Opacity"), value) << ToUtf8(text);
        }
        EXPECT_EQ(effect.Toolkit().Previews(), 4) << "one for each other value";
    });
}

}  // namespace
