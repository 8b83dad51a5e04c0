#include "dialogs/CMemberListDlg.h"

#include "module/CTolmResourceManager.h"

void CMemberListDlg::ExchangeControl(CDataExchange* exchange, const SControlRow& row) {
    DDX_Control(exchange, row.id, members_);
}

void CMemberListDlg::SetUpList(const SControlRow& /*row*/) {
    const CTolmResourceManager resources(L"CmdTexture");
    members_.ResetContent();
    for (int member = LastMember(); member >= 0; --member) {
        const int name = names_[static_cast<std::size_t>(member)];
        const int entry = members_.AddString(LoadCurrentString(name));
        members_.SetItemData(entry, entry);
    }
}

void CMemberListDlg::ShowList(const SControlRow& row) {
    members_.SetCurSel(LastMember() - Value(row.parameter).number);
}

void CMemberListDlg::OnListChosen(const SControlRow& row) {
    const auto chosen = static_cast<std::int32_t>(members_.GetItemData(members_.GetCurSel()));
    Value(row.parameter).number = LastMember() - chosen;
    StoreAndPreview();
}
