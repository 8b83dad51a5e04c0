#include <dlfcn.h>
#include <gtest/gtest.h>

#include <thread>

#include "host/commands/IComponentExporter.h"
#include "host/windowing/CWinApp.h"
#include "module/CComponentExporter.h"
#include "support/LoadedModule.h"
#include "support/Pictures.h"

namespace {

struct CountingComponents : IComponentSink {
    std::vector<TRef<ICoreCommand>> commands;
    std::vector<CString> modules;
    void AddComponent(ICoreCommand* command, const CString& module) override {
        commands.emplace_back(command);
        modules.push_back(module);
    }
};

class Exporter : public ::testing::Test {
  protected:
    Exporter() : handle_(dlopen(FindInstallation().module.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        const auto get = reinterpret_cast<GetExporterFunction>(dlsym(handle_, "GetExporter"));
        EXPECT_EQ(get(nullptr, exporter_.Receive()), 0);
    }
    ~Exporter() override {
        exporter_ = {};
        sink_.commands.clear();
        dlclose(handle_);
    }
    std::array<int, 4> Counts() {
        std::array<int, 4> n{};
        exporter_->GetComponentCounts(&n[0], &n[1], &n[2], &n[3]);
        return n;
    }

    void* handle_;
    TRef<IComponentExporter> exporter_;
    CountingComponents sink_;
};

TEST_F(Exporter, MakesEachComponentOnce) {
    EXPECT_EQ(Counts(), (std::array{14, 0, 0, 0}));
    exporter_->CreateComponent(&sink_, L"CmdTexture", L"Sandstone", true);
    exporter_->CreateComponent(&sink_, L"CmdTexture", L"sandstone", false);
    exporter_->CreateComponent(&sink_, L"CmdTexture", L"Nothing", false);
    EXPECT_TRUE(sink_.commands.empty()) << "names are exact and none is secondary";
    exporter_->CreateComponent(&sink_, L"CmdTexture", L"Sandstone", false);
    exporter_->CreateComponent(&sink_, L"CmdTexture", L"Sandstone", false);
    EXPECT_EQ(sink_.commands.size(), 1U);
    EXPECT_FALSE(exporter_->AllComponentsCreated());
    exporter_->CreateAllComponents(&sink_, L"CmdTexture");
    exporter_->CreateAllComponents(&sink_, L"CmdTexture");
    EXPECT_EQ(Counts(), (std::array{14, 14, 0, 0}));
    EXPECT_TRUE(exporter_->AllComponentsCreated());
    ASSERT_EQ(sink_.commands.size(), 14U);
    for (const CString& module : sink_.modules) EXPECT_EQ(module, CString(L"CmdTexture"));
    for (const auto& command : sink_.commands) {
        EXPECT_EQ(dynamic_cast<VCommandImplementation&>(*command).ReferenceCount(), 1U);
    }
}

TEST_F(Exporter, AnswersItsInterfacesOnly) {
    void* found = nullptr;
    ASSERT_EQ(exporter_->QueryInterface(IComponentExporter::kId, &found), S_OK);
    EXPECT_EQ(found, exporter_.Get());
    EXPECT_EQ(exporter_->Release(), 1U);
    ASSERT_EQ(exporter_->QueryInterface(IID_IUnknown, &found), S_OK);
    EXPECT_EQ(exporter_->Release(), 1U);
    EXPECT_EQ(exporter_->QueryInterface(ICmdResourceData::kId, &found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_FALSE(exporter_->FindDynamicCommand(nullptr));
    EXPECT_TRUE(exporter_->GetDynamicMenuNames().IsEmpty());
}

TEST(OwnExporter, ALaterRegistrationReplacesAnEarlier) {
    static int calls = 0;
    const TRef<CComponentExporter> exporter(new CComponentExporter);
    exporter->RegisterComponent(L"X", true, [](auto*, auto, auto*) { calls += 1; });
    exporter->RegisterComponent(L"X", true, [](auto*, auto, auto*) { calls += 10; });
    exporter->CreateAllComponents(nullptr, L"");
    EXPECT_EQ(calls, 10);
    int n[4];
    exporter->GetComponentCounts(&n[0], &n[1], &n[2], &n[3]);
    EXPECT_EQ(n[0] + n[1], 0);
    EXPECT_EQ(n[2] + n[3], 2);
}

TEST(OwnExporter, KeepsPaletteRecords) {
    const TRef<CComponentExporter> exporter(new CComponentExporter);
    exporter->AddPaletteData(3, 40, 1, 50);
    std::int32_t kind = 0;
    std::int64_t first = 0, second = 0;
    std::uint8_t flag = 0;
    EXPECT_EQ(exporter->GetPaletteData(1, &kind, &first, &flag, &second), 1);
    EXPECT_EQ(kind, 0) << "there is no record 1";
    EXPECT_EQ(exporter->GetPaletteData(0, &kind, &first, &flag, &second), 1);
    EXPECT_EQ(std::tuple(kind, first, flag, second), std::tuple(3, 40, 1, 50));
}

// Commands of two exporters run at the same time as they do one after the other.
TEST(TwoThreads, GiveTheSameBytesAsOne) {
    const LoadedModule module;
    const auto run = [&](const std::string& name, unsigned seed) {
        const TRef<CDocument> document(new CDocument({90, 70}));
        document->SetActiveImage(pictures::Noise(ENPixelFormat::Colour8, 61, 43, seed));
        const TRef<CExecutionContext> context(new CExecutionContext(document, {}, nullptr));
        const TRef<CCmdEffect> command = module->CreateCommand(name);
        PrepareCommand(*command, context.Get());
        RunCommand(*command, context.Get()).ThrowIfFailed();
        return document->GetActiveImage();
    };
    for (const std::string name : {"Blinds", "FineLeather", "Fur", "Weave"}) {
        const auto first = run(name, 1), second = run(name, 2);
        CRowIteratorBands a, b;
        for (int round = 0; round < 5; ++round) {
            std::thread other([&] { b = run(name, 2); });
            a = run(name, 1);
            other.join();
            EXPECT_EQ(pictures::Difference(a, first), "") << name;
            EXPECT_EQ(pictures::Difference(b, second), "") << name;
        }
    }
    EXPECT_EQ(AfxGetApp()->AppName(), CString(L"CmdTexture")) << "which each exporter told";
}

}  // namespace
