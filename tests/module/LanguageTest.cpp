#include <gtest/gtest.h>

#include "hostlib/language/Languages.h"
#include "hostlib/parameters/ParameterValues.h"
#include "support/LoadedModule.h"

namespace {

// No effect lacks a text in any language, and names in English stay what they are in every one.
TEST(Language, EveryTextIsThere) {
    std::map<std::string, CString> english;
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
            EXPECT_EQ(data.GetDisplayName() == english[name], code == "EN") << name;
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
    const auto label = [&] {
        const TRef<CCmdEffect> command = module->CreateCommand("Sandstone");
        PrepareCommand(*command, nullptr);
        return command->BoundRepository()->At(0)->Label();
    };
    const CString english = label();
    languages::Select(FindInstallation().data, "DE");
    EXPECT_FALSE(label() == english);
    languages::Select(FindInstallation().data, "XX");
    EXPECT_EQ(label(), english) << "English stands in for a language that is not there";
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
