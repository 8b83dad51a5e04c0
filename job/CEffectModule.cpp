#include "job/CEffectModule.h"

#include <dlfcn.h>

#include <algorithm>

#include "host/commands/IComponentExporter.h"
#include "host/language/CConnectLanguage.h"
#include "hostlib/language/Languages.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/ConfigFolders.h"
#include "hostlib/system/RegistryStore.h"
#include "job/Installation.h"

namespace {

constexpr const wchar_t* kModuleName = L"CmdTexture";

class CApplication : public TUnknownCoreImpl<IHostApplication> {
  public:
    CErrorAutoThrow GetName(CString& name) override {
        name = L"CmdTexture";
        return {};
    }
};

class CHostObject : public TUnknownCoreImpl<IHostObject> {
  public:
    CErrorAutoThrow GetApplication(IHostApplication** out) override {
        *out = TRef<IHostApplication>(new CApplication).Detach();
        return {};
    }
};

// Keeps the commands that an exporter hands over.
struct CCollectingSink : IComponentSink {
    std::vector<TRef<CCmdEffect>> commands;
    void AddComponent(ICoreCommand* command, const CString& /*module_name*/) override {
        if (auto* effect = dynamic_cast<CCmdEffect*>(command)) commands.emplace_back(effect);
    }
};

// Whether the plug-in found its texts in the language: empty, or what is wrong with their file when
// they are in English instead. Throws when there are not even those.
std::string LanguageProblem(const std::filesystem::path& data, const std::string& language) {
    const auto file_of = [&](const std::string& code) {
        return data / "Languages" / code / (ToUtf8(kModuleName) + "rc.dll");
    };
    const CString linked =
        GetModuleFileNameW(CConnectLanguage::GetModuleResourceHandle(kModuleName));
    if (linked == ToHostPath(file_of(language))) return {};
    if (!(linked == ToHostPath(file_of("EN")))) {
        throw CNException(TolmErrorCode::ReadFailed, languages::Problem(file_of("EN")));
    }
    return languages::Problem(file_of(language));
}

}  // namespace

struct CEffectModule::SLibrary {
    void* handle = nullptr;
    GetExporterFunction get_exporter = nullptr;

    // Under the resource lock: another thread that selects a language calls into the module, whose
    // last handle this may be.
    ~SLibrary() {
        CConnectLanguage::GetResLock();
        if (handle) dlclose(handle);
        CConnectLanguage::FreeResLock();
    }
    // Every exporter makes each of its components once, so each call takes a new one.
    TRef<IComponentExporter> Exporter() const {
        const TRef<IHostObject> host(new CHostObject);
        TRef<IComponentExporter> exporter;
        get_exporter(host.Get(), exporter.Receive());
        return exporter;
    }
};

CEffectModule::CEffectModule(const SInstallation& installation, const std::string& language)
    : library_(std::make_unique<SLibrary>()) {
    SetRegistryDefault(ERegistryHive::LocalMachine, L"Software\\Quarn\\Brushwerk\\X15\\Installer",
                       L"RCPath", ToHostPath(installation.data));
    library_->handle = dlopen(installation.module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library_->handle) throw CNException(TolmErrorCode::ReadFailed, dlerror());
    library_->get_exporter =
        reinterpret_cast<GetExporterFunction>(dlsym(library_->handle, "GetExporter"));
    if (!library_->get_exporter) {
        throw CNException(TolmErrorCode::ReadFailed,
                          Tr("{}: not a plug-in of this program", installation.module.string()));
    }
    languages::Select(installation.data, language);
    language_problem_ = ::LanguageProblem(installation.data, language);

    CCollectingSink sink;
    library_->Exporter()->CreateAllComponents(&sink, kModuleName);
    const auto by_command_id = [](const auto& a, const auto& b) {
        return a->GetResourceData()->GetCommandId() < b->GetResourceData()->GetCommandId();
    };
    std::sort(sink.commands.begin(), sink.commands.end(), by_command_id);
    for (const auto& command : sink.commands) {
        names_.push_back(ToUtf8(command->GetResourceData()->GetComponentName()));
    }
}

CEffectModule::~CEffectModule() = default;

TRef<CCmdEffect> CEffectModule::CreateCommand(const std::string& name) const {
    CCollectingSink sink;
    library_->Exporter()->CreateComponent(&sink, kModuleName, FromUtf8(name).GetString(), false);
    return sink.commands.empty() ? TRef<CCmdEffect>() : sink.commands.front();
}

void PrepareCommand(CCmdEffect& command, ICommandExecutionContext* context) {
    command.GetResourceData()->PrepareRepository(context, true, &command).ThrowIfFailed();
}

CErrorAutoThrow RunCommand(CCmdEffect& command, ICommandExecutionContext* context) {
    CErrorAutoThrow setup = command.Setup(context);
    return setup.Failed() ? setup : command.Do(context);
}
