#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "hostlib/language/Languages.h"
#include "hostlib/parameters/ParameterValues.h"
#include "support/LoadedModule.h"
#include "support/TemporaryLogon.h"

namespace {

// No effect lacks a text in any language, its help text is that language's own (names may be
// alike), and names in English stay what they are in every one.
TEST(Language, EveryTextIsThere) {
    std::map<std::string, CString> english, help;
    for (const std::string& code : languages::Available(FindInstallation().data)) {
        const LoadedModule module(code);
        for (const std::string& name : module->Names()) {
            const TRef<CCmdEffect> command = module->CreateCommand(name);
            const ICmdResourceData& data = *command->GetResourceData();
            for (const CString& text :
                 {data.GetDisplayName(), data.GetTextA(), data.GetTextB(), data.GetTextC(),
                  data.GetTextById(), data.GetPart0(), data.GetPart1(), data.GetPart2()}) {
                EXPECT_FALSE(text.IsEmpty()) << name << " in " << code;
            }
            english.try_emplace(name, data.GetDisplayName());
            EXPECT_EQ(data.GetEnglishDisplayName(), english[name]) << name << " in " << code;
            help.try_emplace(name, data.GetTextC());
            EXPECT_EQ(data.GetTextC() == help[name], code == "EN") << name << " in " << code;
            PrepareCommand(*command, nullptr);
            for (const IParameter* parameter : parameters::All(*command->BoundRepository())) {
                EXPECT_FALSE(parameter->Label().IsEmpty()) << name << " in " << code;
                EXPECT_FALSE(parameter->Description().IsEmpty()) << name << " in " << code;
            }
        }
    }
}

TEST(Language, SwitchesWhileTheModuleIsLoaded) {
    const LoadedModule module("EN");
    const auto text = [&] {
        const TRef<CCmdEffect> command = module->CreateCommand("Sandstone");
        PrepareCommand(*command, nullptr);
        return command->BoundRepository()->At(0)->Description();
    };
    const CString english = text();
    languages::Select(FindInstallation().data, "DE");
    EXPECT_FALSE(text() == english);
    languages::Select(FindInstallation().data, "XX");
    EXPECT_EQ(text(), english) << "English stands in for a language that is not there";
}

// A language file that cannot be used is named, and English stands in for it; without English there
// is no module.
TEST(Language, EnglishStandsInForAnUnusableFile) {
    struct {
        const char* contents;
        const char* problem;
    } const cases[] = {
        {"", "cannot be read"},
        {"{\"format\": 1, \"language\": \"DE\", \"strings\": {\"202\": \"Jal", "is damaged"},
        {"[1]", "is damaged"},
        {"{\"language\": \"DE\", \"strings\": {}}", "is damaged"},
        {"{\"format\": 1, \"language\": \"DE\"}", "is damaged"},
        {"{\"format\": 1, \"language\": \"DE\", \"strings\": {\"x\": \"y\"}}", "is damaged"},
        {"{\"format\": 2, \"language\": \"DE\", \"strings\": {}}", "is of format 2, not 1"},
        {"{\"format\": 1, \"language\": \"EN\", \"strings\": {}}", "is in EN, not in DE"}};
    const TemporaryLogon folder;
    SInstallation broken = FindInstallation();
    const auto english = broken.data / "Languages/EN/CmdTexturerc.dll";
    for (const auto& [contents, problem] : cases) {
        broken.data = folder.Folder() / std::to_string(std::hash<std::string>()(contents));
        const auto file = broken.data / "Languages/DE/CmdTexturerc.dll";
        std::filesystem::create_directories(file.parent_path());
        if (*contents) std::ofstream(file) << contents;
        try {
            CEffectModule(broken, "DE");
            ADD_FAILURE() << contents;
        } catch (const CNException& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr("Languages/EN/CmdTexturerc.dll"));
        }
        std::filesystem::create_directories(broken.data / "Languages/EN");
        std::filesystem::copy(english, broken.data / "Languages/EN/CmdTexturerc.dll");
        const CEffectModule module(broken, "DE");
        EXPECT_EQ(module.LanguageProblem(), file.string() + ": the language file " + problem);
        EXPECT_EQ(module.CreateCommand("Tiles")->GetResourceData()->GetDisplayName(),
                  CString(L"Tiles"));
    }
    EXPECT_EQ(CEffectModule(FindInstallation(), "DE").LanguageProblem(), "");
}

TEST(Language, FollowsTheEnvironment) {
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    EXPECT_EQ(languages::Preferred({"EN", "DE"}), "DE");
    EXPECT_EQ(languages::Preferred({"EN"}), "EN");
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(languages::Preferred({"EN", "DE"}), "EN");
    unsetenv("LC_ALL");
}

}  // namespace
