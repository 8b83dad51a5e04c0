#include "EffectDialog.h"

namespace {

// On a canvas of 300 by 1200.
TEST_F(DialogTest, ToolTips) {
    struct {
        const char* effect;
        int control;
        const wchar_t* tip;
    } const cases[] = {
        {"Blinds", 1011, L"Slat width [2 - 1200]"},
        {"Blinds", 1094, L"Opacity [1 - 100]"},
        {"Blinds", 1571, L""},
        {"Blinds", 1212, L""},
        {"Blinds", 0, L""},
        {"Weave", 1011, L"Thread width [1 - 1200]"},
        {"Weave", 1568, L"Gap width [1 - 1200]"},
        {"Weave", 1094, L"Opacity [1 - 100]"},
        {"SoftPlastic", 2105, L"Angle [0 - 359]"},
        {"SoftPlastic", 2102, L"Density [1 - 128]"},
        {"StrawWall", 2103, L"Width [1 - 40]"},
        {"StrawWall", 2140, L""},
        {"RoughLeather", 2452, L"Luminance [-255 - 255]"},
        {"Sculpture", 3484, L"Angle [0 - 360]"},
        {"Tiles", 2952, L""},
        {"MosaicAntique", 704, L"Columns [25 - 100]"},
        {"MosaicAntique", 702, L"Grout diffusion [0 - 100]"},
        {"MosaicAntique", 706, L"Symmetric"},
        {"MosaicAntique", 708, L"Fill colour [#000000]"},
        {"MosaicGlass", 958, L"Symmetric"},
        {"Fur", 1953, L"Density [1 - 100]"},
    };
    for (const auto& [effect, control, tip] : cases) {
        EffectDialog run(effect, {300, 1200});
        SCOPED_TRACE(effect);
        run.Play([id = control, tip = tip](IDialogModel& dialog) {
            EXPECT_EQ(dialog.ToolTip(id), CString(tip)) << id;
        });
    }
}

// Controls that show a parameter have its description; a label has none.
TEST_F(DialogTest, Descriptions) {
    EffectDialog effect("Sculpture");
    effect.Play([&](IDialogModel& dialog) {
        EXPECT_EQ(dialog.Description(3487), effect.Parameter("Angle").Description());
        EXPECT_EQ(dialog.Description(3489), effect.Parameter("PatternName").Description());
        EXPECT_TRUE(dialog.Description(3490).IsEmpty());
    });
}

}  // namespace
