#include "module/TComponentResourceData.h"

#include <algorithm>
#include <array>
#include <cwctype>

#include "host/commands/CCmdEffect.h"
#include "host/commands/GeneralSettings.h"
#include "host/core/TRef.h"
#include "host/system/Registry.h"
#include "module/CTolmResourceManager.h"
#include "module/RTRACE.h"

namespace {

constexpr int kModuleNameId = 100;

// Resource-data attributes that the general settings depend on.
constexpr int kHasDialogPlacement = 1;
constexpr int kHasPreviewVisible = 2;
constexpr int kHasAutoProof = 3;
constexpr int kObserved = 5;
constexpr int kHasShowSelectionOnly = 11;
// The command's own attribute for a random seed.
constexpr int kCommandHasRandomSeed = 10;

bool ContainsIgnoringCase(const CString& text, const CString& wanted) {
    const auto same = [](wchar_t a, wchar_t b) { return std::towlower(a) == std::towlower(b); };
    const std::wstring& in = text.Text();
    const std::wstring& part = wanted.Text();
    return std::search(in.begin(), in.end(), part.begin(), part.end(), same) != in.end();
}

// Where the installation's resources lie; empty when nothing says so. Read under the resource
// lock, and asked for again until it is known.
const CString& ResourceFolder() {
    static CString folder;
    if (folder.IsEmpty()) {
        folder = ReadRegistryText(ERegistryHive::LocalMachine,
                                  L"Software\\Quarn\\Brushwerk\\X15\\Installer", L"RCPath")
                     .value_or(CString());
    }
    return folder;
}

// The display name `id` in English: from the English copy of the current resource module.
CString EnglishName(int id, const CString& localised) {
    const CString current = GetModuleFileNameW(AfxGetResourceHandle());
    if (ContainsIgnoringCase(current, L"Languages\\EN")) return localised;
    const std::size_t slash = current.Text().rfind(L'\\');
    const CString file = slash == std::wstring::npos ? current : current.Text().substr(slash + 1);
    const HMODULE english = LoadLibraryW(ResourceFolder() + L"\\Languages\\EN\\" + file);
    return english ? LoadStringW(english, id) : localised;
}

// Part `index` of a text of up to three parts. Without a line feed the first two are the whole
// text.
CString PartOf(const CString& text, int index) {
    const std::wstring& whole = text.Text();
    const std::size_t first = whole.find(L'\n');
    if (first == std::wstring::npos) return index == 2 ? CString() : text;
    if (index == 0) return whole.substr(0, first);
    const std::size_t second = whole.find(L'\n', first + 1);
    if (index == 1) return whole.substr(first + 1, second - first - 1);
    return second == std::wstring::npos ? CString() : CString(whole.substr(second + 1));
}

}  // namespace

template <class Interface>
TComponentResourceData<Interface>::TComponentResourceData(const SCommandDescription& description)
    : component_name_(description.name),
      textA_(LoadCurrentString(description.texts.text_a)),
      display_name_(LoadCurrentString(description.texts.name)),
      english_display_name_(EnglishName(description.texts.name, display_name_)),
      three_part_text_(LoadCurrentString(description.texts.three_part)),
      module_name_(LoadCurrentString(kModuleNameId)),
      textB_(LoadCurrentString(description.texts.text_b)),
      component_guid_(description.guid),
      image_id_(description.texts.image_id),
      command_id_(description.command_id),
      text_id_(description.texts.text_id),
      attributes_{{1, 1}, {2, 1}, {3, 1}, {8, 1}, {9, 1}, {10, 1}} {}

template <class Interface>
HRESULT TComponentResourceData<Interface>::QueryInterface(const GUID& id, void** out) {
    static constexpr SInterfaceEntry kTable[] = {
        {&IResourceData::kId, 0}, {&ICmdResourceData::kId, 0}, {nullptr, 0}};
    return AnswerFrom(kTable, this, id, out);
}

template <class Interface>
HMODULE TComponentResourceData<Interface>::GetImageModule() const {
    if (image_id_ == 0) return nullptr;
    const CTolmResourceManager resources(module_name_);
    const HMODULE found = AfxFindResourceHandle(image_id_, L"PNG");
    return found ? found : AfxFindResourceHandle(image_id_, L"RT_BITMAP");
}

template <class Interface>
CString TComponentResourceData<Interface>::GetPart0() const {
    return PartOf(three_part_text_, 0);
}
template <class Interface>
CString TComponentResourceData<Interface>::GetPart1() const {
    return PartOf(three_part_text_, 1);
}
template <class Interface>
CString TComponentResourceData<Interface>::GetPart2() const {
    return PartOf(three_part_text_, 2);
}

template <class Interface>
void TComponentResourceData<Interface>::SetParts(const CString& part0, const CString& part1,
                                                 const CString& part2) {
    three_part_text_ = part0 + L"\n" + part1 + L"\n" + part2;
}
template <class Interface>
void TComponentResourceData<Interface>::SetPart0(const CString& text) {
    SetParts(text, GetPart1(), GetPart2());
}
template <class Interface>
void TComponentResourceData<Interface>::SetPart1(const CString& text) {
    SetParts(GetPart0(), text, GetPart2());
}
template <class Interface>
void TComponentResourceData<Interface>::SetPart2(const CString& text) {
    SetParts(GetPart0(), GetPart1(), text);
}

template <class Interface>
CString TComponentResourceData<Interface>::GetTextById() const {
    const CTolmResourceManager resources(module_name_);
    return LoadCurrentString(text_id_);
}

template <class Interface>
CErrorAutoThrow TComponentResourceData<Interface>::SetAttribute(std::int32_t id,
                                                                std::int32_t value) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        attributes_[id] = value;
        if (id == kObserved && observer_) {
            observer_->OnSetAttribute(component_name_, observer_tag_, value);
        }
        return {};
    });
}

template <class Interface>
std::int32_t TComponentResourceData<Interface>::GetAttribute(std::int32_t id) const {
    if (id == kObserved && observer_) {
        const std::int32_t answer = observer_->OnGetAttribute(component_name_, observer_tag_);
        if (answer > 0) return answer;
    }
    const auto found = attributes_.find(id);
    return found == attributes_.end() ? 0 : found->second;
}

template <class Interface>
void TComponentResourceData<Interface>::SetAttributeObserver(IAttributeObserver* observer,
                                                             std::uint8_t tag) {
    observer_ = observer;
    observer_tag_ = tag;
}

template <class Interface>
CErrorAutoThrow TComponentResourceData<Interface>::Edit(ICommandExecutionContext* context,
                                                        VCommandImplementation* command) {
    RTRACE(L"TComponentResourceData<class ICmdResourceData>::Edit", nullptr, kTraceInformation, 0)
        .write(L"[Command] Display UI for command %s to edit the parameters \n",
               component_name_.GetString());
    return ShowDialog(context, command);
}

template <class Interface>
TCommandResourceData<Interface>::TCommandResourceData(const SCommandDescription& description)
    : TComponentResourceData<Interface>(description),
      textC_(LoadCurrentString(description.texts.text_c)) {}

template <class Interface>
void TCommandResourceData<Interface>::DefineGeneralSettings(ICommandExecutionContext* context,
                                                            IParameterRepository* repository,
                                                            VCommandImplementation* command) {
    TRef<IGeneralSettings> held;
    CreateGeneralSettings(repository, held.Receive()).Ignore();
    IGeneralSettings* general = held.Get();
    const bool reduced = command->IsIE();
    DefineExecutionMode(general).Ignore();
    if (this->GetAttribute(kHasDialogPlacement)) DefineDlgPlacement(general).Ignore();
    if (this->GetAttribute(kHasPreviewVisible)) DefinePreviewVisible(general, !reduced).Ignore();
    if (this->GetAttribute(kHasAutoProof)) DefineAutoProof(general, reduced).Ignore();
    if (command->GetAttribute(kCommandHasRandomSeed)) DefineRandomSeed(general).Ignore();
    if (this->GetAttribute(kHasShowSelectionOnly)) DefineShowSelectionOnly(general).Ignore();
    DefineComponentVersionTuple(general, context, this->GetVersion()).Ignore();
    DefinePreviewMode(general).Ignore();
    DefineScreenControl(general).Ignore();
}

template <class Interface>
CErrorAutoThrow TCommandResourceData<Interface>::PrepareRepository(
    ICommandExecutionContext* context, bool finish, VCommandImplementation* command) {
    if (!command) return {TolmErrorCode::UnusableInput, "there is no command"};
    return CatchErrors([&]() -> CErrorAutoThrow {
        TRef<IParameterRepository> repository;
        command->GetParameterRepository(repository.Receive(), false).Ignore();
        if (repository) {
            repository->SetName(this->GetModuleName() + L"\\" + this->GetComponentName());
        }
        DefineGeneralSettings(context, repository.Get(), command);
        DefineParametersFor(context, repository.Get(), command).Ignore();
        if (finish && repository) repository->Complete(context).Ignore();
        return {};
    });
}

template class TComponentResourceData<ICmdResourceData>;
template class TCommandResourceData<ICmdResourceData>;
