#include <fstream>

#include "EffectDialog.h"
#include "host/commands/ParameterDefinition.h"
#include "hostlib/language/Languages.h"
#include "hostlib/parameters/Presets.h"

namespace {

using Faults = DialogTest;

TEST_F(Faults, NothingToShowADialogWith) {
    EffectDialog effect("Blinds");
    InstallToolkit(nullptr);
    const CErrorAutoThrow error =
        effect.Command().GetResourceData()->Edit(nullptr, &effect.Command());
    EXPECT_EQ(error.Code(), TolmErrorCode::NotAvailable);
    EXPECT_STRNE(error.Text(), "");
}

// A language whose resource module holds what the test says.
class Language {
  public:
    Language(const std::filesystem::path& data, const nlohmann::json& module) {
        const auto folder = data / "Languages" / "XX";
        std::filesystem::create_directories(folder);
        nlohmann::json all = {
            {"format", 1}, {"language", "XX"}, {"strings", nlohmann::json::object()}};
        all.update(module);
        std::ofstream(folder / "CmdTexturerc.dll") << all;
        languages::Select(data, "XX");
    }
    ~Language() { languages::Select(FindInstallation().data, "EN"); }
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;
};

TEST_F(Faults, AMissingTemplateIsNamed) {
    EffectDialog effect("Blinds");
    const Language language(Folder() / "none", {{"strings", {{"100", "CmdTexture"}}}});
    const CErrorAutoThrow error = effect.Run([](IDialogModel&) { FAIL() << "it was opened"; });
    EXPECT_EQ(error.Code(), TolmErrorCode::NotFound);
    EXPECT_NE(std::string(error.Text()).find("207"), std::string::npos);
}

TEST_F(Faults, ATemplateThatIsNoneIsRefused) {
    const nlohmann::json control = {{"id", 1011}, {"kind", "lever"}};
    int number = 0;
    for (const nlohmann::json& data :
         {nlohmann::json(7), nlohmann::json::object(), nlohmann::json({{"groups", 3}}),
          nlohmann::json({{"groups", {{{"rows", {{{"controls", {control}}}}}}}}})}) {
        EffectDialog effect("Blinds");
        const Language language(Folder() / std::to_string(number++),
                                {{"dialogs", {{"207", data}}}});
        EXPECT_EQ(effect.Run([](IDialogModel&) { FAIL() << "it was opened"; }).Code(),
                  TolmErrorCode::ReadFailed)
            << data;
    }
}

// Without its texts, or even without its controls, a dialog still opens and keeps its values.
TEST_F(Faults, MissingTextsAndControlsAreSurvived) {
    const nlohmann::json field = {{"id", 1011}, {"kind", "number"}};
    const nlohmann::json group = {{"rows", {{{"controls", {field}}}}}};
    EffectDialog effect("Blinds");
    const Language language(Folder() / "bare",
                            {{"dialogs", {{"207", {{"groups", nlohmann::json::array({group})}}}}}});
    EXPECT_FALSE(effect
                     .Run([&](IDialogModel& dialog) {
                         EXPECT_EQ(dialog.ToolTip(1011), L"Slat width [2 - 300]")
                             << "its parameter's";
                         dialog.Type(1011, L"33");
                         dialog.Click(1212);
                         dialog.Ok();
                     })
                     .Failed());
    EXPECT_EQ(effect.Number("Width"), 33);
    EXPECT_EQ(effect.Number("Opacity"), 100);
    EXPECT_EQ(effect.Number("Horizontal"), 1);
}

void BreakParameter(EffectDialog& effect, int index) {
    TRef<IParameter> text;
    DefStringParam(text.Receive(), index, L"Broken", L"", L"", L"", 0, false, false).Ignore();
    effect.Repository().Add(text.Get(), index).Ignore();
}

TEST_F(Faults, AParameterThatCannotBeReadStopsTheDialog) {
    for (int index = 0; index < 5; ++index) {
        EffectDialog effect("Blinds");
        BreakParameter(effect, index);
        EXPECT_EQ(effect.Run([](IDialogModel&) { FAIL() << "it was opened"; }).Code(),
                  TolmErrorCode::UnusableInput)
            << index;
    }
}

TEST_F(Faults, AParameterThatBreaksLaterEndsTheDialog) {
    EffectDialog effect("Blinds");
    const CErrorAutoThrow error = effect.Run([&](IDialogModel& dialog) {
        BreakParameter(effect, 4);
        EXPECT_EQ(effect.PreviewsOf([&] { dialog.Click(1212); }), 0);
    });
    EXPECT_EQ(error.Code(), TolmErrorCode::UnusableInput);
}

TEST_F(Faults, PresetsThatDoNotFitChangeNothing) {
    const std::pair<const char*, const char*> cases[] = {
        {"broken", "{\"Width\": 30"},         {"list", "[30]"},
        {"foreign", R"({"NumRows": 30})"},    {"high", R"({"Opacity": 50, "Width": 301})"},
        {"type", R"({"Horizontal": "yes"})"}, {"empty", ""},
    };
    EffectDialog effect("Blinds");
    effect.Play([&](IDialogModel& dialog) {
        const auto before = effect.Values();
        for (const auto& [name, text] : cases) {
            const std::filesystem::path file = presets::FileOf("Blinds", name);
            std::filesystem::create_directories(file.parent_path());
            std::ofstream(file) << text;
            EXPECT_EQ(effect.PreviewsOf([&, name = name] {
                const CErrorAutoThrow error = dialog.LoadPreset(name);
                EXPECT_TRUE(error.Failed()) << name;
                EXPECT_STRNE(error.Text(), "") << name;
            }),
                      0);
            EXPECT_EQ(effect.Values(), before) << name;
        }
        for (const char* name : {"absent", "", "../out", ".hidden"}) {
            EXPECT_TRUE(dialog.LoadPreset(name).Failed()) << name;
            EXPECT_TRUE(dialog.DeletePreset(name).Failed()) << name;
        }
        EXPECT_FALSE(dialog.CanUndo());
    });
}

// Ids that are not there, or of another kind, and entries out of range.
TEST_F(Faults, ActionsOnTheWrongControlDoNothing) {
    EffectDialog effect("Blinds");
    effect.Play([&](IDialogModel& dialog) {
        const auto before = effect.Values();
        EXPECT_EQ(effect.PreviewsOf([&] {
            for (const int id : {0, -1, 7, 1011, 1212, 1571}) {
                if (id != 1011) dialog.Type(id, L"3");
                if (id != 1212) dialog.Click(id);
                if (id != 1571) dialog.PickColour(id, 3);
                dialog.Turn(id, 3);
                dialog.Choose(id, 0);
                dialog.OpenLibrary(id);
                dialog.AimDropper(id);
                EXPECT_FALSE(dialog.EntryPicture(id, 0).IsAttached());
            }
        }),
                  0);
        EXPECT_EQ(effect.Values(), before);
    });
}

}  // namespace
