#include <algorithm>

#include "EffectDialog.h"

namespace {

using SpecialRules = DialogTest;

TEST_F(SpecialRules, WeaveKeepsTheGapColourUntilGapsAreFilled) {
    EffectDialog effect("Weave");
    effect.Play([&](IDialogModel& dialog) {
        const auto gap_colour_enabled = [&] {
            EXPECT_EQ(dialog.Control(1571).enabled, dialog.Control(1598).enabled);
            return dialog.Control(1571).enabled;
        };
        EXPECT_TRUE(gap_colour_enabled());
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Click(1569); }), 1);
        EXPECT_EQ(effect.Number("FillGaps"), 0);
        EXPECT_FALSE(gap_colour_enabled());

        // The swatch takes no clicks now, but a colour picked for it waits for its time.
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.PickColour(1571, 0x00FF00); }), 0);
        EXPECT_EQ(effect.Number("GapColor"), 0);

        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Click(1569); }), 1);
        EXPECT_TRUE(gap_colour_enabled());
        dialog.AimDropper(1571);
        dialog.Click(1569);
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.PickFromPicture(0x0000FF); }), 0);
        EXPECT_EQ(effect.Number("GapColor"), 0);
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Click(1569); }), 1);
        EXPECT_EQ(effect.Number("GapColor"), 0x0000FF);
        EXPECT_EQ(effect.Number("FillGaps"), 1);
    });
}

TEST_F(SpecialRules, WeaveOpensWithoutGapColourWhenGapsAreOpen) {
    EffectDialog effect("Weave");
    effect.Parameter("FillGaps").SetNumber(0);
    effect.Play([&](IDialogModel& dialog) {
        EXPECT_FALSE(dialog.Control(1571).enabled);
        EXPECT_FALSE(dialog.Control(1598).enabled);
        EXPECT_EQ(dialog.Control(1569).value, 0);
        dialog.ResetAll();
        EXPECT_TRUE(dialog.Control(1571).enabled) << "shown again with the other values";
    });
}

// A default below the range, as a canvas of one pixel makes it, is shown as wrong but kept.
// The usual widths are half the canvas, which is nothing here.
TEST_F(SpecialRules, WeaveOnOnePixelBeginsWithPossibleValues) {
    EffectDialog effect("Weave", {1, 1});
    effect.Play([&](IDialogModel& dialog) {
        for (const int field : {1011, 1568}) {
            EXPECT_FALSE(dialog.Control(field).wrong);
            EXPECT_EQ(dialog.Control(field).text, L"1");
        }
        const SPreviewSnapshot shown = dialog.Snapshot();
        CStatusControl status;
        CRowIteratorBands result;
        CRowIterator selection;
        EXPECT_STREQ(
            shown.command->Preview(&status, shown.source, result, &selection, shown.context.Get())
                .Text(),
            "");
    });
}

struct SMosaic {
    const char* effect;
    int columns, rows, symmetric;
};

TEST_F(SpecialRules, MosaicsCountAlikeWhileSymmetric) {
    for (const auto& [name, columns, rows, symmetric] :
         {SMosaic{"MosaicAntique", 704, 705, 706}, SMosaic{"MosaicGlass", 956, 957, 958}}) {
        SCOPED_TRACE(name);
        EffectDialog effect(name);
        effect.Play(
            [&, columns = columns, rows = rows, symmetric = symmetric](IDialogModel& dialog) {
                const auto counts = [&] {
                    EXPECT_EQ(dialog.Control(columns).value, effect.Number("NumColumns"));
                    EXPECT_EQ(dialog.Control(rows).value, effect.Number("NumRows"));
                    return std::pair(effect.Number("NumColumns"), effect.Number("NumRows"));
                };
                using Counts = std::pair<std::int64_t, std::int64_t>;
                EXPECT_EQ(effect.PreviewsOf([&] { dialog.Type(columns, L"60"); }), 1);
                EXPECT_EQ(counts(), Counts(60, 60));
                EXPECT_EQ(effect.PreviewsOf([&] { dialog.Type(rows, L"40"); }), 1);
                EXPECT_EQ(counts(), Counts(40, 40));

                // Letting go stores nothing until the next change.
                EXPECT_EQ(effect.PreviewsOf([&] { dialog.Click(symmetric); }), 0);
                EXPECT_EQ(effect.Number("Symmetric"), 1);
                EXPECT_EQ(effect.PreviewsOf([&] { dialog.Type(rows, L"30"); }), 1);
                EXPECT_EQ(counts(), Counts(40, 30));
                EXPECT_EQ(effect.Number("Symmetric"), 0);

                // Coupling again takes the columns' count.
                EXPECT_EQ(effect.PreviewsOf([&] { dialog.Click(symmetric); }), 1);
                EXPECT_EQ(counts(), Counts(40, 40));
                EXPECT_EQ(effect.Number("Symmetric"), 1);
                EXPECT_EQ(effect.PreviewsOf([&] {
                    dialog.Click(symmetric);
                    dialog.Click(symmetric);
                }),
                          0)
                    << "with equal counts nothing changes";
                dialog.Click(symmetric);
                dialog.Ok();
            });
        EXPECT_EQ(effect.Number("Symmetric"), 0) << "OK keeps what the dialog shows";
    }
}

TEST_F(SpecialRules, SymmetricCountsStayTogetherWhateverChangesThem) {
    EffectDialog effect("MosaicGlass");
    effect.Play([&](IDialogModel& dialog) {
        constexpr int kColumns = 956, kRows = 957, kSymmetric = 958;
        const std::int64_t usual = effect.Number("NumRows");
        const auto counts = [&] {
            return std::pair(effect.Number("NumColumns"), effect.Number("NumRows"));
        };
        dialog.Type(kColumns, L"60");
        dialog.Reset(kRows);
        EXPECT_EQ(counts(), std::pair(usual, usual));
        EXPECT_EQ(dialog.Control(kColumns).value, usual);
        dialog.Click(kSymmetric);
        dialog.Type(kColumns, L"60");
        dialog.Reset(kSymmetric);
        EXPECT_EQ(counts(), std::pair(std::int64_t{60}, std::int64_t{60}));
        EXPECT_EQ(effect.Number("Symmetric"), 1);
    });
}

TEST_F(SpecialRules, TilesListsItsShapesFromTheLast) {
    EffectDialog effect("Tiles");
    effect.Play([&](IDialogModel& dialog) {
        const SControlState& list = dialog.Control(2952);
        ASSERT_EQ(list.entries.size(), 3U);
        EXPECT_EQ(list.entries[0].text, L"Hexagons");
        EXPECT_EQ(list.entries[1].text, L"Squares");
        EXPECT_EQ(list.entries[2].text, L"Triangles");
        EXPECT_EQ(list.selected, 0) << "the default";
        for (const int entry : {2, 1, 0}) {
            EXPECT_EQ(effect.PreviewsOf([&] { dialog.Choose(2952, entry); }), 1);
            EXPECT_EQ(effect.Number("TileShape"), 2 - entry);
        }
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Choose(2952, 3); }), 0);
    });
    effect.Parameter("TileShape").SetNumber(0);
    effect.Play([&](IDialogModel& dialog) { EXPECT_EQ(dialog.Control(2952).selected, 2); });
}

// A dial is a compass, and so are all angles.
TEST_F(SpecialRules, DialsCountAsTheirTextsSay) {
    int dials = 0;
    for (const std::string& name : EffectDialog::Module().Names()) {
        EffectDialog effect(name);
        effect.Play([&](IDialogModel& dialog) {
            for (const int id : dialog.Template().ControlsOf(EControlKind::Dial)) {
                const std::string text = ToUtf8(dialog.Description(id));
                EXPECT_LT(text.find("degrees clockwise from the top"), 99) << name << ": " << text;
                ++dials;
            }
        });
    }
    EXPECT_GT(dials, 0);
}

// A library whose pictures a test can take away.
class CLibrary : public TUnknownImpl<CLibrary, IResourceLibrary> {
  public:
    std::vector<SResourceEntry> entries = {{L"bark", L"wood"}, {L"oak", L"wood"}, {L"sand", L""}};
    std::set<int> asked;

    CErrorAutoThrow LoadImage(int type, const CString& name, CRowIteratorBands& image) override {
        asked.insert(type);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const bool found = entries[i].name == name;
            if (found) return image.Create(static_cast<int>(i) + 1, 1, ENPixelFormat::Colour8);
        }
        return {TolmErrorCode::NotFound, "no such entry"};
    }
    std::vector<SResourceEntry> Entries(int) override { return entries; }
};

struct SPicker {
    const char *effect, *name, *view;
    int button, type;
};
const std::vector<SPicker> kPickers = {{"Sculpture", "PatternName", "PatternView", 3489, 10},
                                       {"Texture", "TextureName", "TextureView", 3212, 44}};

TEST_F(SpecialRules, PickersTakeNamesFromTheLibrary) {
    for (const auto& [name, parameter, view, button, type] : kPickers) {
        SCOPED_TRACE(name);
        const TRef<CLibrary> library(new CLibrary);
        EffectDialog effect(name, {300, 200}, library);
        effect.Parameter(parameter).SetText(L"sand");
        effect.Play([&, parameter = parameter, view = view, button = button](IDialogModel& dialog) {
            const SControlState& state = dialog.Control(button);
            EXPECT_EQ(state.selected, 2);
            EXPECT_EQ(state.picture.GetWidth(), 3) << "the third entry's picture";
            EXPECT_EQ(state.view, 1);
            EXPECT_EQ(effect.PreviewsOf([&] { dialog.Choose(button, 1); }), 1);
            EXPECT_EQ(effect.Parameter(parameter).Text(), L"oak");
            EXPECT_EQ(state.picture.GetWidth(), 2);
            EXPECT_EQ(dialog.EntryPicture(button, 0).GetWidth(), 1);
            dialog.ChooseView(button, 0);
            dialog.Ok();
            EXPECT_EQ(effect.Number(view), 0);
        });
        EXPECT_EQ(library->asked, std::set<int>{type});
    }
}

TEST_F(SpecialRules, SculptureRepeatsTheChosenName) {
    const TRef<CLibrary> library(new CLibrary);
    EffectDialog effect("Sculpture", {300, 200}, library);
    effect.Parameter("Category").SetText(L"wood");
    effect.Play([&](IDialogModel& dialog) {
        EXPECT_EQ(dialog.Control(3489).entries.size(), 2U) << "those of the category";
        EXPECT_EQ(dialog.Control(3490).text, L"bark") << "an empty name is the first";
        dialog.Choose(3489, 1);
        EXPECT_EQ(dialog.Control(3490).text, L"oak");
    });
    EXPECT_EQ(effect.Parameter("Category").Text(), L"wood");
}

TEST_F(SpecialRules, PickersShowOneCategoryOrAll) {
    const TRef<CLibrary> library(new CLibrary);
    EffectDialog effect("Texture", {300, 200}, library);
    effect.Play([&](IDialogModel& dialog) {
        const SControlState& state = dialog.Control(3212);
        EXPECT_EQ(state.categories, std::vector<CString>{L"wood"});
        EXPECT_EQ(state.entries.size(), 3U);
        dialog.Choose(3212, 1);
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.ChooseCategory(3212, L"wood"); }), 0);
        ASSERT_EQ(state.entries.size(), 2U);
        EXPECT_EQ(state.entries[static_cast<std::size_t>(state.selected)].text, L"oak");
        dialog.ChooseCategory(3212, L"gone");
        EXPECT_EQ(state.entries.size(), 3U);
        dialog.ChooseCategory(3212, L"wood");
        dialog.Ok();
    });
    EXPECT_EQ(effect.Parameter("TextureName").Text(), L"oak");
    EXPECT_EQ(effect.Parameter("Category").Text(), L"wood");
}

TEST_F(SpecialRules, PickersRefuseWhatHasVanished) {
    const TRef<CLibrary> library(new CLibrary);
    EffectDialog effect("Texture", {300, 200}, library);
    effect.Parameter("TextureName").SetText(L"sand");
    effect.Play([&](IDialogModel& dialog) {
        library->entries.erase(library->entries.begin());
        EXPECT_FALSE(dialog.EntryPicture(3212, 0).IsAttached());
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Choose(3212, 0); }), 0);
        EXPECT_EQ(effect.Parameter("TextureName").Text(), L"sand");
        EXPECT_EQ(effect.Toolkit().Messages().size(), 1U);
        EXPECT_EQ(dialog.Control(3212).selected, 1) << "still sand, in the list as it is now";
        library->entries.clear();
        dialog.OpenLibrary(3212);
        EXPECT_TRUE(dialog.Control(3212).entries.empty());
        EXPECT_EQ(dialog.Control(3212).selected, -1);
    });
}

TEST_F(SpecialRules, PickersOpenWithoutALibrary) {
    for (const SPicker& picker : kPickers) {
        EffectDialog effect(picker.effect);
        EXPECT_FALSE(effect
                         .Run([&](IDialogModel& dialog) {
                             dialog.OpenLibrary(picker.button);
                             EXPECT_TRUE(dialog.Control(picker.button).entries.empty());
                             dialog.Ok();
                         })
                         .Failed());
    }
}

TEST_F(SpecialRules, TheDropperPicksForOneSwatch) {
    EffectDialog effect("RoughLeather");
    effect.Play([&](IDialogModel& dialog) {
        EXPECT_TRUE(dialog.DropperEnabled());
        const auto pick = [&](COLORREF colour) {
            return effect.PreviewsOf([&] { dialog.PickFromPicture(colour); });
        };
        EXPECT_EQ(pick(0x102030), 1);
        EXPECT_EQ(effect.Number("LeatherColor"), 0x102030) << "the first swatch, unless told";
        EXPECT_EQ(dialog.Control(2459).colour, 0x102030U);
        EXPECT_EQ(pick(0x102030), 0) << "it is that colour already";
        dialog.AimDropper(2458);
        EXPECT_EQ(pick(0x405060), 1);
        EXPECT_EQ(effect.Number("LightColor"), 0x405060);
        EXPECT_EQ(effect.Number("LeatherColor"), 0x102030);
    });
}

TEST_F(SpecialRules, TheDropperFollowsTheActiveWindow) {
    EffectDialog effect("Blinds");
    effect.Play([&](IDialogModel& dialog) {
        dialog.Activate(false, false);
        EXPECT_TRUE(dialog.DropperEnabled()) << "the picture is in a window of its own";
        dialog.Activate(false, true);
        EXPECT_FALSE(dialog.DropperEnabled());
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.PickFromPicture(0x010203); }), 0);
        dialog.Activate(true, false);
        EXPECT_TRUE(dialog.DropperEnabled());
        EXPECT_EQ(effect.Toolkit().DropperStates(), (std::vector<bool>{true, false, true}));
    });
}

TEST_F(SpecialRules, OneDropperAtATime) {
    EffectDialog outer("Blinds");
    EffectDialog inner("Sandstone");
    outer.Play([&](IDialogModel& first) {
        inner.Play([&](IDialogModel& second) {
            EXPECT_FALSE(second.DropperEnabled());
            EXPECT_TRUE(first.DropperEnabled());
        });
        EXPECT_TRUE(first.DropperEnabled()) << "closing the other dialog does not take it away";
    });
    inner.Play([&](IDialogModel& dialog) { EXPECT_TRUE(dialog.DropperEnabled()); });
    EffectDialog fur("Fur");
    fur.Play([&](IDialogModel& dialog) {
        EXPECT_FALSE(dialog.DropperEnabled()) << "a dialog without colours";
        dialog.Activate(true, false);
        EXPECT_FALSE(dialog.DropperEnabled());
    });
}

}  // namespace
