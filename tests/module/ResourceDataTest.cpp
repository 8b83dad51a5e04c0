#include <gtest/gtest.h>

#include "host/commands/GeneralSettings.h"
#include "host/commands/IComponentExporter.h"
#include "plugin/AllCommands.h"
#include "support/LoadedModule.h"

namespace {

TEST(ResourceData, IdentifiesEveryCommand) {
    const LoadedModule module;
    ASSERT_EQ(module->Names().size(), AllCommands().size());
    for (std::size_t i = 0; i < AllCommands().size(); ++i) {
        const SCommandDescription& row = *AllCommands()[i].description;
        const TRef<CCmdEffect> command = module->CreateCommand(ToUtf8(row.name));
        ICmdResourceData& data = *command->GetResourceData();
        EXPECT_EQ(data.GetComponentName(), CString(row.name));
        EXPECT_EQ(data.GetCommandId(), 36001 + 2 * static_cast<int>(i));
        EXPECT_EQ(*data.GetComponentGuidPtr(), row.guid);
        EXPECT_EQ(data.GetModuleName(), CString(L"CmdTexture"));
        EXPECT_EQ(data.GetVersion(), 1);
        EXPECT_TRUE(data.GetReservedText().IsEmpty());
        for (const int attribute : {1, 2, 3, 8, 9, 10}) EXPECT_EQ(data.GetAttribute(attribute), 1);
        EXPECT_EQ(data.GetAttribute(11), 0);
        EXPECT_EQ(command->GetAttribute(15), 1);
        EXPECT_TRUE(command->Flag(12));
    }
    EXPECT_EQ(ToText(module->CreateCommand("Blinds")->GetResourceData()->GetComponentGuid()),
              "4AEE87D5-19F6-4815-AA5E-F23631522E33");
}

TEST(ResourceData, SplitsAndJoinsItsThreeParts) {
    const LoadedModule module;
    const TRef<CCmdEffect> command = module->CreateCommand("Blinds");
    ICmdResourceData& data = *command->GetResourceData();
    data.SetPart0(L"a");
    data.SetPart1(L"b");
    data.SetPart2(L"c");
    data.SetPart1(L"x");
    EXPECT_EQ(data.GetPart0(), CString(L"a"));
    EXPECT_EQ(data.GetPart1(), CString(L"x"));
    EXPECT_EQ(data.GetPart2(), CString(L"c"));
    // A part that holds a line feed moves the parts behind it.
    data.SetPart0(L"p\nq");
    EXPECT_EQ(data.GetPart1(), CString(L"q"));
}

TEST(ResourceData, AsksItsObserverForAttributeFive) {
    struct Observer : IAttributeObserver {
        std::int32_t answer = 7, told = 0;
        std::int32_t OnGetAttribute(const CString&, std::uint8_t tag) override {
            return tag == 9 ? answer : -1;
        }
        void OnSetAttribute(const CString&, std::uint8_t, std::int32_t value) override {
            told = value;
        }
    } observer;
    const LoadedModule module;
    const TRef<CCmdEffect> command = module->CreateCommand("Fur");
    ICmdResourceData& data = *command->GetResourceData();
    data.SetAttributeObserver(&observer, 9);
    EXPECT_EQ(data.GetAttribute(5), 7);
    observer.answer = 0;
    EXPECT_EQ(data.GetAttribute(5), 0);
    data.SetAttribute(5, 3).ThrowIfFailed();
    EXPECT_EQ(observer.told, 3);
    EXPECT_EQ(data.GetAttribute(5), 3);
    EXPECT_EQ(data.GetAttribute(4), 0);
}

TEST(ResourceData, PreparesTheRepository) {
    const LoadedModule module;
    const TRef<CCmdEffect> command = module->CreateCommand("Tiles");
    PrepareCommand(*command, nullptr);
    IParameterRepository* repository = command->BoundRepository();
    EXPECT_EQ(repository->Name(), CString(L"CmdTexture\\Tiles"));
    IGeneralSettings* general = GeneralSettingsOf(repository);
    for (const wchar_t* name :
         {L"ExecutionMode", L"DialogPlacement", L"PreviewVisible", L"AutoProof",
          L"ComponentVersion", L"PreviewMode", L"ScreenControl"}) {
        EXPECT_TRUE(general->IsDefined(name)) << ToUtf8(name);
    }
    EXPECT_EQ(general->Value(L"PreviewVisible"), 1);
    EXPECT_EQ(general->Value(L"AutoProof"), 0);
    EXPECT_FALSE(general->IsDefined(L"ShowSelectionOnly"));
    EXPECT_FALSE(general->IsDefined(L"RandomSeed"));
}

TEST(Command, ClonesAreIndependent) {
    const LoadedModule module;
    for (const std::string& name : module->Names()) {
        const TRef<CCmdEffect> command = module->CreateCommand(name);
        PrepareCommand(*command, nullptr);
        TRef<ICoreCommand> made;
        ASSERT_FALSE(command->Clone(made.Receive()).Failed());
        auto& clone = dynamic_cast<CCmdEffect&>(*made);
        EXPECT_EQ(clone.ReferenceCount(), 1U);
        EXPECT_EQ(clone.GetAttribute(14), 1);
        EXPECT_EQ(clone.GetResourceData(), command->GetResourceData());
        clone.BoundRepository()->At(0)->SetNumber(77);
        EXPECT_NE(command->BoundRepository()->At(0)->Number(), 77) << name;
        const auto preview = QueryFor<ICommandPreview>(made.Get());
        EXPECT_EQ(preview.Get(), static_cast<ICommandPreview*>(&clone));
        EXPECT_EQ(clone.ReferenceCount(), 2U) << "the second table counts for the whole object";
    }
}

TEST(Command, AdjustsTheAreaItIsAskedAbout) {
    const LoadedModule module;
    const CRect asked{0, 0, 100, 50};
    for (const std::string& name : module->Names()) {
        const bool whole = name == "FineLeather" || name == "MosaicAntique" ||
                           name == "MosaicGlass" || name == "Sculpture" || name == "Texture";
        const CRect expected = whole ? CRect{} : name == "Tiles" ? CRect{-10, -10, 110, 60} : asked;
        CRect rect = asked;
        module->CreateCommand(name)->ModifyRect(rect).ThrowIfFailed();
        EXPECT_EQ(rect, expected) << name;
        CRect empty;
        module->CreateCommand(name)->ModifyRect(empty).ThrowIfFailed();
        EXPECT_EQ(empty, CRect{}) << name;
    }
}

}  // namespace
