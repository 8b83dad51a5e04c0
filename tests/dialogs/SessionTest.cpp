#include <fstream>

#include "EffectDialog.h"
#include "hostlib/parameters/CommandLine.h"
#include "hostlib/parameters/Presets.h"

namespace {

using Session = DialogTest;

void ExpectWithinRanges(const EffectDialog& effect) {
    for (const IParameter* parameter : parameters::All(effect.Repository())) {
        if (parameter->Type() == EParameterType::Colour) {
            EXPECT_LE(parameter->Number(), 0xFFFFFF);
        } else if (parameter->Type() != EParameterType::String) {
            EXPECT_GE(parameter->Number(), parameter->Minimum()) << ToUtf8(parameter->Name());
            EXPECT_LE(parameter->Number(), parameter->Maximum()) << ToUtf8(parameter->Name());
        }
    }
}

TEST_F(Session, RandomValuesArePossibleOnesAndCanBeUndone) {
    for (const std::string& name : EffectDialog::Module().Names()) {
        SCOPED_TRACE(name);
        EffectDialog effect(name, {6000, 4000});
        effect.Play([&](IDialogModel& dialog) {
            const auto start = effect.Values();
            std::vector<nlohmann::ordered_json> states;
            for (int i = 0; i < 30; ++i) {
                states.push_back(effect.Values());
                EXPECT_EQ(effect.PreviewsOf([&] { dialog.Randomise(); }), 1);
                ExpectWithinRanges(effect);
                const bool mosaic = name.starts_with("Mosaic");
                if (mosaic && effect.Number("Symmetric")) {
                    EXPECT_EQ(effect.Number("NumRows"), effect.Number("NumColumns"));
                }
            }
            EXPECT_NE(effect.Values(), start);
            for (; !states.empty(); states.pop_back()) {
                EXPECT_TRUE(dialog.CanUndo());
                dialog.Undo();
                EXPECT_EQ(effect.Values(), states.back());
            }
            EXPECT_FALSE(dialog.CanUndo());
            EXPECT_EQ(effect.PreviewsOf([&] { dialog.Undo(); }), 0);
        });
    }
}

TEST_F(Session, ResetsOneParameterOrAll) {
    EffectDialog effect("Tiles");
    const auto defaults = effect.Values();
    effect.Play([&](IDialogModel& dialog) {
        dialog.Type(2961, L"10");
        dialog.Choose(2952, 2);
        dialog.PickColour(2964, 0x00FF00);
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Reset(2960); }), 1);
        EXPECT_EQ(dialog.Control(2961).text, L"315") << "the field shows what its dial does";
        EXPECT_EQ(effect.Number("TileShape"), 0);
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Reset(2960); }), 0) << "it is the default";
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.ResetAll(); }), 1);
        EXPECT_EQ(effect.Values(), defaults);
        EXPECT_EQ(dialog.Control(2952).selected, 0);
        dialog.Undo();
        EXPECT_EQ(effect.Number("TileShape"), 0);
        EXPECT_EQ(dialog.Control(2952).selected, 2);
        dialog.Undo();
        EXPECT_EQ(effect.Number("Angle"), 10);
    });
}

TEST_F(Session, EveryChangeIsAStepAndADragIsOne) {
    EffectDialog effect("Tiles");
    effect.Play([&](IDialogModel& dialog) {
        const auto state = [&] { return std::pair(effect.Values(), dialog.Mix().opacity); };
        std::vector states = {state()};
        const std::function<void()> changes[] = {
            [&] {
                for (const int to : {4, 9, 6}) dialog.Type(2954, std::to_wstring(to));
            },
            [&] {
                for (const int to : {100, 120, 90}) dialog.Turn(2960, to);
            },
            [&] { dialog.Choose(2952, 2); },
            [&] { dialog.Choose(2952, 1); },
            [&] { dialog.PickColour(2964, 0x00FF00); },
            [&] { dialog.PickFromPicture(0x123456); },
            [&] {
                for (const int per_cent : {90, 50}) dialog.SetMix({per_cent, ENBlendMode::Screen});
            },
            [&] { dialog.Reset(2954); },
            [&] { dialog.Randomise(); },
        };
        for (const auto& change : changes) {
            change();
            dialog.EndChange();
            states.push_back(state());
        }
        dialog.Turn(2960, dialog.Control(2961).value + 1);
        dialog.Turn(2960, dialog.Control(2961).value - 1);
        dialog.EndChange();  // back where it was: no step
        ASSERT_EQ(dialog.History().size(), states.size());
        EXPECT_EQ(dialog.History()[2].text, L"90");
        for (int at = dialog.HistoryPosition(); at-- > 0;) {
            dialog.Undo();
            EXPECT_EQ(state(), states[static_cast<std::size_t>(at)]) << at;
        }
        EXPECT_FALSE(dialog.CanUndo());
        dialog.GoTo(4);
        dialog.Redo();
        EXPECT_EQ(state(), states[5]);
        dialog.Step(2954, 1);
        EXPECT_FALSE(dialog.CanRedo()) << "a change after undoing is a new way";
    });
}

TEST_F(Session, AWrongTextStoresNothingOnItsWay) {
    EffectDialog effect("Tiles");
    effect.Play([&](IDialogModel& dialog) {
        constexpr int kAngle = 2961;
        const auto angle = [&] { return effect.Number("Angle"); };
        struct {
            std::vector<const wchar_t*> keys;
            int typed, left;  // the value after the typing, and when the field was left
        } const cases[] = {{{L"1", L"1,", L"1,5"}, 315, 315},
                           {{L"31", L"3", L""}, 315, 315},
                           {{L"36", L"360"}, 315, 359},
                           {{L"20", L"x"}, 20, 20},
                           {{L"-", L"-4"}, 315, 0},
                           {{L"99999999999999999999"}, 315, 359},
                           {{L"1", L"1x", L"1", L"12"}, 12, 12}};
        for (const auto& [keys, typed, left] : cases) {
            for (const wchar_t* text : keys) dialog.Type(kAngle, text);
            SCOPED_TRACE(ToUtf8(keys.back()));
            EXPECT_EQ(dialog.Control(kAngle).text, keys.back()) << "it stays as it is typed";
            EXPECT_EQ(angle(), typed);
            EXPECT_EQ(dialog.Control(2960).value, typed) << "the dial";
            dialog.Leave(kAngle);
            EXPECT_EQ(angle(), left);
            EXPECT_EQ(dialog.Control(kAngle).text, CString(std::to_wstring(left)));
            dialog.Reset(kAngle);
        }
        dialog.Type(kAngle, L"x");
        dialog.Undo();
        EXPECT_EQ(dialog.Control(kAngle).text, L"315") << "the text is what is undone first";
    });
}

TEST_F(Session, PresetsByName) {
    EffectDialog effect("Blinds");
    effect.Play([&](IDialogModel& dialog) {
        const auto own = [&] {
            std::vector<std::string> ids;
            for (const SPresetEntry& preset : dialog.Presets()) {
                if (!preset.ships) ids.push_back(preset.id);
            }
            return ids;
        };
        EXPECT_TRUE(own().empty());
        dialog.Type(1011, L"77");
        EXPECT_FALSE(dialog.SavePreset("wide", false).Failed());
        EXPECT_TRUE(dialog.SavePreset("wide", false).Failed()) << "it exists";
        dialog.Type(1011, L"88");
        EXPECT_FALSE(dialog.SavePreset("wide", true).Failed());
        EXPECT_EQ(own(), std::vector<std::string>{"wide"});
        dialog.ResetAll();
        EXPECT_EQ(effect.PreviewsOf([&] { EXPECT_FALSE(dialog.LoadPreset("wide").Failed()); }), 1);
        EXPECT_EQ(effect.Number("Width"), 88);
        EXPECT_EQ(dialog.Control(1011).text, L"88");
        dialog.Undo();
        EXPECT_EQ(effect.Number("Width"), 20);
        EXPECT_FALSE(dialog.DeletePreset("wide").Failed());
        EXPECT_TRUE(own().empty());
    });
}

TEST_F(Session, LastValuesComeBackAfterOk) {
    const auto opened_with = [](EffectDialog& effect) {
        effect.Play([](IDialogModel& dialog) { dialog.Cancel(); });
        return effect.Number("Width");
    };
    {
        EffectDialog effect("Blinds");
        effect.Play([](IDialogModel& dialog) { dialog.Type(1011, L"50"); });
        EffectDialog next("Blinds");
        EXPECT_EQ(opened_with(next), 20) << "a cancelled dialog is forgotten";
    }
    EffectDialog effect("Blinds");
    effect.Play([](IDialogModel& dialog) {
        dialog.Type(1011, L"250");
        dialog.Type(1094, L"60");
        dialog.Ok();
    });
    EffectDialog next("Blinds");
    EXPECT_EQ(opened_with(next), 250);
    EffectDialog given("Blinds");
    given.Parameter("Opacity").SetNumber(30);
    EXPECT_EQ(opened_with(given), 20) << "values that came with the command stand";
    EffectDialog small("Blinds", {100, 100});
    EXPECT_EQ(opened_with(small), 20) << "250 is not possible on this canvas";
    EXPECT_EQ(small.Number("Opacity"), 60) << "but the other value is";

    std::ofstream(Folder() / "cmdtexture" / "last" / "Blinds.json") << "{\"Width\": ";
    EffectDialog broken("Blinds");
    EXPECT_EQ(opened_with(broken), 20);
}

TEST_F(Session, TheSnapshotStaysAsItIs) {
    EffectDialog effect("Blinds");
    SPreviewSnapshot snapshot;
    effect.Play([&](IDialogModel& dialog) {
        dialog.Type(1011, L"40");
        snapshot = dialog.Snapshot();
        dialog.Type(1011, L"50");
    });
    ASSERT_TRUE(snapshot.command);
    EXPECT_EQ(parameters::Find(*snapshot.command->BoundRepository(), "Width").Number(), 40);
    CStatusControl status;
    CRowIteratorBands result;
    EXPECT_FALSE(
        snapshot.command
            ->Preview(&status, snapshot.source, result, &snapshot.selection, snapshot.context.Get())
            .Failed());
    EXPECT_EQ(result.GetWidth(), 300);
}

TEST_F(Session, CommandLinesNameWhatIsNotDefault) {
    EffectDialog effect("Blinds");
    effect.Play([&](IDialogModel& dialog) {
        EXPECT_EQ(dialog.CommandLine("in.png", "out.png"),
                  "cmdtexture apply Blinds in.png -o out.png");
        dialog.Type(1011, L"30");
        dialog.Click(1212);
        dialog.PickColour(1571, 0x0000FF);
        EXPECT_EQ(dialog.CommandLine("my photo.png", "-o'clock.png"),
                  "cmdtexture apply Blinds 'my photo.png' -o './-o'\\''clock.png' -p Width=30 "
                  "-p Horizontal=false -p 'Color=#FF0000'");
    });
    EffectDialog sculpture("Sculpture");
    sculpture.Parameter("PatternName").SetText(FromUtf8("schöner $stein"));
    EXPECT_EQ(ApplyCommandLine("Sculpture", "a", "", sculpture.Repository()),
              "cmdtexture apply Sculpture a -o '' -p 'PatternName=schöner $stein'");
}

}  // namespace
