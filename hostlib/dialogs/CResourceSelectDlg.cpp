#include "host/dialogs/CResourceSelectDlg.h"

#include <algorithm>
#include <map>

#include "hostlib/windowing/SDialogState.h"

namespace {

std::vector<SResourceEntry> EntriesOf(IResourceLibrary* library, int type) {
    return library ? library->Entries(type) : std::vector<SResourceEntry>();
}

// Those of a category; of one that has none (any more), all of them.
std::vector<SResourceEntry> InCategory(const std::vector<SResourceEntry>& all,
                                       const CString& category) {
    std::vector<SResourceEntry> chosen;
    std::copy_if(all.begin(), all.end(), std::back_inserter(chosen),
                 [&](const SResourceEntry& entry) { return entry.category == category; });
    return category.IsEmpty() || chosen.empty() ? all : chosen;
}

std::vector<CString> CategoriesOf(const std::vector<SResourceEntry>& all) {
    std::vector<CString> found;
    for (const SResourceEntry& entry : all) {
        const bool known = std::find(found.begin(), found.end(), entry.category) != found.end();
        if (!known && !entry.category.IsEmpty()) found.push_back(entry.category);
    }
    return found;
}

}  // namespace

CTolmDropButton::CTolmDropButton() = default;
CTolmDropButton::~CTolmDropButton() = default;
CResourceDropButton::CResourceDropButton() = default;
CResourceDropButton::~CResourceDropButton() = default;

void CTolmDropButton::SetPreviewImage(const CRowIteratorBands& image) {
    if (!State()) return;
    State()->picture = image;
    StateChanged();
}

int CCacheMgr::FindIndex(IResourceLibrary* library, int type, const CString& category,
                         const CString& name) {
    const std::vector<SResourceEntry> entries = InCategory(EntriesOf(library, type), category);
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const SResourceEntry& e) { return e.name == name; });
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

CResourceSelectDlg::CResourceSelectDlg() = default;
CResourceSelectDlg::~CResourceSelectDlg() = default;

void CResourceSelectDlg::SetExecutionContext(ICommandExecutionContext* context) {
    context_ = context;
}

IResourceLibrary* CResourceSelectDlg::Library() const {
    return context_ ? context_->ResourceLibrary() : nullptr;
}

bool CResourceSelectDlg::Create(CDialog& dialog, int id, const wchar_t* kind) {
    static const std::map<std::wstring, int> types = {{L"Pattern", 10}, {L"Texture", 44}};
    const auto found = types.find(kind);
    if (found == types.end()) return false;
    type_ = found->second;
    return Attach(dialog, id);
}

void CResourceSelectDlg::SetCategory(const CString& category) { category_ = category; }

void CResourceSelectDlg::BuildResourceList() {
    if (!State()) return;
    const std::vector<SResourceEntry> all = EntriesOf(Library(), type_);
    State()->entries.clear();
    State()->selected = -1;
    State()->category = category_;
    State()->categories = CategoriesOf(all);
    for (const SResourceEntry& entry : InCategory(all, category_)) {
        State()->entries.push_back({entry.name, 0});
    }
    StateChanged();
}

void CResourceSelectDlg::SelectItem(const CString& name) {
    if (!State()) return;
    const bool first = name.IsEmpty() && !State()->entries.empty();
    State()->selected = first ? 0 : CCacheMgr::FindIndex(Library(), type_, category_, name);
    StateChanged();
}

void CResourceSelectDlg::SetThumbnailViews(bool available) { thumbnails_ = available; }

void CResourceSelectDlg::SetCurView(int view) {
    const int shown = thumbnails_ && view != 0 ? 1 : 0;
    if (!State() || State()->view == shown) return;
    State()->view = shown;
    StateChanged();
}

int CResourceSelectDlg::GetCurView() const { return State() ? State()->view : 0; }

CString CResourceSelectDlg::GetCurItem() const {
    const SControlState* state = State();
    const bool one =
        state && state->selected >= 0 && state->selected < static_cast<int>(state->entries.size());
    return one ? state->entries[static_cast<std::size_t>(state->selected)].text : CString();
}

CErrorAutoThrow CResourceSelectDlg::LoadCurImage(CRowIteratorBands& image) const {
    return LoadItemImage(State() ? State()->selected : -1, image);
}

CErrorAutoThrow CResourceSelectDlg::LoadItemImage(int entry, CRowIteratorBands& image) const {
    const SControlState* state = State();
    if (!Library() || !state || entry < 0 || entry >= static_cast<int>(state->entries.size())) {
        return TolmErrorCode::NotFound;
    }
    const CString& name = state->entries[static_cast<std::size_t>(entry)].text;
    return Library()->LoadThumbnail(type_, name, image);
}
