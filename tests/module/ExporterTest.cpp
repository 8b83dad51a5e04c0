#include <dlfcn.h>
#include <gmock/gmock.h>

#include <cstring>
#include <fstream>
#include <set>
#include <thread>

#include "host/commands/IComponentExporter.h"
#include "host/windowing/CWinApp.h"
#include "hostlib/language/Languages.h"
#include "module/CComponentExporter.h"
#include "plugin/AllCommands.h"
#include "support/LoadedModule.h"
#include "support/Pictures.h"
#include "support/TemporaryLogon.h"

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
    const int all = static_cast<int>(AllCommands().size());
    EXPECT_EQ(Counts(), (std::array{all, 0, 0, 0}));
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
    EXPECT_EQ(Counts(), (std::array{all, all, 0, 0}));
    EXPECT_TRUE(exporter_->AllComponentsCreated());
    ASSERT_EQ(sink_.commands.size(), AllCommands().size());
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
    EXPECT_TRUE(exporter_->GetDynamicMenuNames().IsEmpty());
}

// An editor that has no place for an answer gets an error and no crash.
TEST_F(Exporter, AnswersNullPointers) {
    const auto get = reinterpret_cast<GetExporterFunction>(dlsym(handle_, "GetExporter"));
    EXPECT_EQ(get(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(exporter_->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    int created = -1;
    exporter_->GetComponentCounts(nullptr, &created, nullptr, nullptr);
    EXPECT_EQ(created, 0);
    exporter_->RegisterComponent(nullptr, false, nullptr);
    exporter_->CreateComponent(&sink_, L"CmdTexture", nullptr, false);
    exporter_->CreateComponent(nullptr, L"CmdTexture", L"Fur", false);
    exporter_->AddDynamicCommandData(nullptr);
    EXPECT_FALSE(exporter_->FindDynamicCommand(nullptr));
    EXPECT_EQ(exporter_->GetPaletteData(0, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(Counts(), (std::array{14, 1, 0, 0}));
}

// The name goes to the module's own application object, the process having another one or not.
TEST(ApplicationName, IsTheModulesAndStaysWhenTheHostFails) {
    struct Application : TUnknownImpl<Application, IHostApplication> {
        CErrorAutoThrow GetName(CString& name) override {
            name = answer;
            return answer.IsEmpty() ? TolmErrorCode::NotAvailable : TolmErrorCode::Success;
        }
        CString answer = L"Editor";
    };
    struct Host : TUnknownImpl<Host, IHostObject> {
        CErrorAutoThrow GetApplication(IHostApplication** out) override {
            *out = TRef<IHostApplication>(application).Detach();
            return {};
        }
        TRef<Application> application{new Application};
    };
    const TRef<Host> host(new Host);
    const auto tell = [&](void* module) {
        TRef<IComponentExporter> exporter;
        reinterpret_cast<GetExporterFunction>(dlsym(module, "GetExporter"))(host.Get(),
                                                                            exporter.Receive());
    };
    const auto load = [] { return dlopen(FindInstallation().module.c_str(), RTLD_NOW); };
    void* module = load();
    tell(module);
    EXPECT_EQ(AfxGetApp()->AppName(), CString(L"Editor"));
    host->application->answer = L"";
    tell(module);
    EXPECT_EQ(AfxGetApp()->AppName(), CString(L"Editor"));
    dlclose(module);
    EXPECT_EQ(AfxGetApp(), nullptr);

    CWinApp first;
    host->application->answer = L"Editor";
    module = load();
    tell(module);
    EXPECT_TRUE(first.AppName().IsEmpty());
    dlclose(module);
}

// What the framework's modules promise each other to export, and nothing else.
TEST(Module, ExportsWhatItPromises) {
    std::set<std::string> promised = {"GetExporter", "BuildIsDebug", "LinkStandard"};
    const auto promise = [&](const std::string& name, const std::string& type,
                             std::initializer_list<const char*> members) {
        promised.insert({"vtable for " + type, "typeinfo for " + type, "typeinfo name for " + type,
                         type + "::" + name + "()", type + "::~" + name + "()",
                         type + "::" + name + "(" + type + " const&)",
                         type + "::operator=(" + type + " const&)"});
        for (const char* member : members) promised.insert(type + "::" + member);
    };
    const std::pair<const char*, const char*> pairs[] = {
        {"", "ICmdResourceData"},
        {"", "ICoreCommand"},
        {"CAppSvcExporter", "IAppSvcExporter"},
        {"CCacheableThumbnail", "ICacheableThumbnail"},
        {"CComponentExporter", "IComponentExporter"},
        {"CDLLGuidExporter", "IDLLGuidExporter"},
        {"CDocViewExporter", "IDocViewExporter"},
        {"CNEventSink", "IEventSink"},
        {"CModuleActivation", "IModuleActivation"},
        {"CModuleComponentExporter", "IModuleComponentExporter"},
        {"CUndoRepository", "IUndoRepository"},
        {"VCacheableFile", "ICacheableObjectSource"},
        {"VCacheableFileEnumerator", "ICacheableObjectEnumerator"}};
    for (const auto& [owner, interface] : pairs) {
        promise("TUnknownCoreImpl", std::string("TUnknownCoreImpl<") + interface + ">",
                {"QueryInterface(GUID const&, void**)", "AddRef()", "Release()", "LocalAddRef()",
                 "LocalRelease()", "ReferenceCount() const", "GetInterfaceTable()",
                 "GetInterfaceTable()::kTable"});
        if (*owner) {
            promise("TUnknownImpl", std::string("TUnknownImpl<") + owner + ", " + interface + ">",
                    {"GetInterfaceTable()"});
        }
    }
    std::set<std::string> exported;
    const std::string command = "nm -DC --defined-only " + FindInstallation().module.string();
    FILE* const nm = popen(command.c_str(), "r");
    for (char line[1000]; std::fgets(line, sizeof line, nm);) {
        const std::string symbol(line, std::strcspn(line, "\n"));
        EXPECT_NE(symbol[17], 'u') << symbol << " would keep the module loaded";
        exported.insert(symbol.substr(19));
    }
    pclose(nm);
    EXPECT_THAT(exported, testing::ElementsAreArray(promised));
}

// Nothing stays of a module that was unloaded: neither its code, nor what it registered, nor the
// events of its trace log.
TEST(Module, CanBeUnloaded) {
    struct Library : TUnknownImpl<Library, IResourceLibrary> {
        CErrorAutoThrow LoadImage(int, const CString&, CRowIteratorBands& image) override {
            return image.Copy(pictures::Noise(ENPixelFormat::Colour8, 9, 7, 5), 0);
        }
    };
    const TemporaryLogon logon;
    const TRef<Library> library(new Library);
    const auto run_every_effect = [&] {
        const LoadedModule module;
        for (const std::string& name : module->Names()) {
            const TRef<CDocument> document(new CDocument({12, 9}));
            document->SetActiveImage(pictures::Noise(ENPixelFormat::ColourAlpha8, 12, 9, 1));
            const TRef<CExecutionContext> context(
                new CExecutionContext(document, library, nullptr));
            const TRef<CCmdEffect> command = module->CreateCommand(name);
            PrepareCommand(*command, context.Get());
            EXPECT_FALSE(RunCommand(*command, context.Get()).Failed()) << name;
            command->GetResourceData()->Edit(context.Get(), command.Get()).Ignore();
        }
        EXPECT_FALSE(logon.EventFiles().empty()) << "the trace log has taken its decision";
    };
    for (int cycle = 0; cycle < 100; ++cycle) {
        run_every_effect();
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);) {
            // Its code: a sanitizer reads files of which it names lines, and keeps them mapped.
            const bool is_code = line.find("r-xp") != std::string::npos;
            ASSERT_FALSE(is_code && line.ends_with("CmdTexture.so")) << cycle << ": " << line;
        }
        ASSERT_THAT(logon.EventFiles(), testing::IsEmpty());
    }
    languages::Select(FindInstallation().data, "EN");
    EXPECT_EQ(AfxGetApp(), nullptr);
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

TEST(OwnExporter, FindsDynamicCommandsByKindAndVersion) {
    struct Target : TUnknownImpl<Target, IDynamicCommandTarget> {
        Target(int of_kind, float of_version) : kind(of_kind), version(of_version) {}
        std::int32_t GetKind() override { return kind; }
        float GetVersion() override { return version; }
        int kind;
        float version;
    };
    CDynamicCmdData of_kind_1{1, 2.5F, 3.5F}, of_every_kind{3, 5, 6};
    const TRef<CComponentExporter> exporter(new CComponentExporter);
    exporter->AddDynamicCommandData(&of_kind_1);
    exporter->AddDynamicCommandData(&of_every_kind);
    struct {
        int kind;
        float version;
        bool found;
    } const cases[] = {{1, 2.5F, true}, {1, 3.5F, true}, {1, 2.4F, false}, {1, 4, false},
                       {0, 3, false},   {0, 5, true},    {2, 5, false},    {3, 6, true}};
    for (const auto& [kind, version, found] : cases) {
        const TRef<Target> target(new Target(kind, version));
        EXPECT_EQ(exporter->FindDynamicCommand(target.Get()), found) << kind << " " << version;
    }
}

TEST(OwnExporter, FailuresStayInside) {
    static int calls = 0;
    const TRef<CComponentExporter> exporter(new CComponentExporter);
    exporter->RegisterComponent(L"X", false, [](auto*, auto, auto*) {
        if (++calls == 1) throw std::length_error("map/set too long");
    });
    exporter->CreateAllComponents(nullptr, L"");
    EXPECT_FALSE(exporter->AllComponentsCreated());
    exporter->CreateComponent(nullptr, L"", L"X", false);
    EXPECT_TRUE(exporter->AllComponentsCreated()) << "what failed can be tried again";
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
