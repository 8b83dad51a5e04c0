#include <gtest/gtest.h>

#include "host/commands/GeneralSettings.h"
#include "host/commands/IComponentExporter.h"
#include "plugin/AllCommands.h"
#include "support/LoadedModule.h"
#include "support/Pictures.h"

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
    data.SetPart0(L"y");
    EXPECT_EQ(data.GetPart0(), CString(L"y"));
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
        EXPECT_EQ(clone.Clone(nullptr).Code(), TolmErrorCode::UnusableInput);
        EXPECT_EQ(clone.QueryInterface(IID_IUnknown, nullptr), E_POINTER);
        EXPECT_EQ(clone.GetResourceData()->PrepareRepository(nullptr, true, nullptr).Code(),
                  TolmErrorCode::UnusableInput);
        CRowIteratorBands source = pictures::Noise(ENPixelFormat::Grey8, 9, 9, 1), result;
        clone.ApplyEffect(nullptr, source, result, nullptr, {}, nullptr).Ignore();
        EXPECT_EQ(clone.ReferenceCount(), 1U) << name << " survives without a status control";
        EXPECT_EQ(clone.GetAttribute(14), 1);
        EXPECT_EQ(clone.GetResourceData(), command->GetResourceData());
        clone.BoundRepository()->At(0)->SetNumber(77);
        EXPECT_NE(command->BoundRepository()->At(0)->Number(), 77) << name;
        const auto preview = QueryFor<ICommandPreview>(made.Get());
        EXPECT_EQ(preview.Get(), static_cast<ICommandPreview*>(&clone));
        EXPECT_EQ(clone.ReferenceCount(), 2U) << "the second table counts for the whole object";
    }
}

// A document of one picture in which commands run.
struct SBench {
    SBench(const CRowIteratorBands& picture, CSize canvas) : document(new CDocument(canvas)) {
        document->SetActiveImage(picture);
        context = new CExecutionContext(document, {}, nullptr);
    }
    TRef<CDocument> document;
    TRef<CExecutionContext> context;
};

TEST(Command, UndoGivesBackWhatDoReplaced) {
    const LoadedModule module;
    const auto before = pictures::Noise(ENPixelFormat::ColourAlpha16, 20, 15, 1);
    const SBench bench(before, {20, 15});
    const auto shown = [&] { return bench.document->GetActiveImage(); };
    const TRef<CCmdEffect> command = module->CreateCommand("Sandstone");
    PrepareCommand(*command, bench.context.Get());
    RunCommand(*command, bench.context.Get()).ThrowIfFailed();
    const auto after = shown();
    EXPECT_NE(pictures::Difference(after, before), "");
    command->Undo(bench.context.Get()).ThrowIfFailed();
    EXPECT_EQ(pictures::Difference(shown(), before), "");
    EXPECT_EQ(command->Undo(bench.context.Get()).Code(), TolmErrorCode::UnusableInput);
    command->Redo(bench.context.Get()).ThrowIfFailed();
    EXPECT_EQ(pictures::Difference(shown(), after), "");
}

// Without a repository a command starts from values of its own, which are not always the defaults.
TEST(Command, StartsFromItsOwnValues) {
    const std::pair<const char*, std::vector<std::int64_t>> cases[] = {
        {"Blinds", {0, 0, 0, 0, 0}},
        {"FineLeather", {30, 40, 0, 40, 4, 250}},
        {"Fur", {40, 40, 4, 250}},
        {"PolishedStone", {45, 20, 0xFFFFFF, 145, 15}},
        {"RoughLeather", {45, 10, 5, 0, 0xFFFFFF, 135, 14}},
        {"Sandstone", {45, 20, 0xFFFFFF, 80, 13}},
        {"SoftPlastic", {45, 20, 0, 32, 14}},
        {"StrawWall", {100, 40, 0x555555, 15, 14, 0, 1}},
        {"Weave", {0, 0, 0, 0, 0, 0}}};
    const LoadedModule module;
    for (const auto& [name, values] : cases) {
        CRowIteratorBands results[2];
        TolmErrorCode codes[2];
        for (const bool prepared : {false, true}) {
            const SBench bench(pictures::Noise(ENPixelFormat::Colour8, 40, 30, 2), {40, 30});
            const TRef<CCmdEffect> command = module->CreateCommand(name);
            if (prepared) PrepareCommand(*command, bench.context.Get());
            for (std::size_t i = 0; prepared && i < values.size(); ++i) {
                command->BoundRepository()->At(static_cast<int>(i))->SetNumber(values[i]);
            }
            codes[prepared] = RunCommand(*command, bench.context.Get()).Code();
            results[prepared] = bench.document->GetActiveImage();
        }
        EXPECT_EQ(codes[0], codes[1]) << name;
        EXPECT_EQ(pictures::Difference(results[0], results[1]), "") << name;
    }
}

// Textures that count their strokes per image give a preview its share of them, at least one.
TEST(Command, SmallPreviewsGetAShareOfTheStrokes) {
    const LoadedModule module;
    struct {
        const char* name;
        int density_at, canvas, density, share;
    } const cases[] = {{"StrawWall", 3, 40, 15, 15},  {"StrawWall", 3, 80, 15, 7},
                       {"StrawWall", 3, 4000, 99, 1}, {"Fur", 1, 80, 90, 45},
                       {"Fur", 1, 30000, 90, 1},      {"Fur", 1, 4, 90, 100}};
    for (const auto& [name, density_at, canvas, density, share] : cases) {
        const auto run = [&, at = density_at](CSize size, int strokes) {
            const SBench bench(pictures::Noise(ENPixelFormat::Grey8, 40, 30, 2), size);
            const TRef<CCmdEffect> command = module->CreateCommand(name);
            PrepareCommand(*command, bench.context.Get());
            command->BoundRepository()->At(at)->SetNumber(strokes);
            RunCommand(*command, bench.context.Get()).ThrowIfFailed();
            return bench.document->GetActiveImage();
        };
        EXPECT_EQ(pictures::Difference(run({canvas, 3000}, density), run({40, 30}, share)), "")
            << name << " on a canvas of " << canvas;
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
        CValidateVector needs;
        EXPECT_TRUE(module->CreateCommand(name)->SetValidateVector(needs));
        EXPECT_EQ(needs.size(), name == "Tiles" ? 1U : 0U) << name;
        for (const SValidateEntry& need : needs) {
            EXPECT_EQ(std::tuple(need.requirement, need.flags, need.argument),
                      std::tuple(219, std::array<bool, 4>{}, 0));
        }
        CRect empty;
        module->CreateCommand(name)->ModifyRect(empty).ThrowIfFailed();
        EXPECT_EQ(empty, CRect{}) << name;
    }
}

}  // namespace
