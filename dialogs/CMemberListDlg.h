#pragma once

#include "dialogs/CParameterDlg.h"

struct SMemberListTable : SDialogTable {
    std::span<const int> names;  // ids of the texts of the enumeration's members, from 0
};

// A dialog with a list of an enumeration's members. The list shows them the other way round: the
// last one first.
class CMemberListDlg : public CParameterDlg {
  protected:
    CMemberListDlg(const SMemberListTable& table, ICommandExecutionContext* context,
                   VCommandImplementation* command, CWnd* parent)
        : CParameterDlg(table, context, command, parent), names_(table.names) {}

    void ExchangeControl(CDataExchange* exchange, const SControlRow& row) override;
    void SetUpList(const SControlRow& row) override;
    void ShowList(const SControlRow& row) override;
    void OnListChosen(const SControlRow& row) override;

  private:
    int LastMember() const { return static_cast<int>(names_.size()) - 1; }

    std::span<const int> names_;
    CComboBox members_;
};
