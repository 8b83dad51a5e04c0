#pragma once

#include "dialogs/CParameterDlg.h"

struct SMosaicTable : SDialogTable {
    struct {
        int symmetric, rows, columns;  // indices of parameters
    } counts;
};

// What the two mosaics share: while the tiles are symmetric, there are as many rows as columns.
class CMosaicDlg : public CParameterDlg {
  public:
    void ReconcileParameters() override;

  protected:
    CMosaicDlg(const SMosaicTable& table, ICommandExecutionContext* context,
               VCommandImplementation* command, CWnd* parent)
        : CParameterDlg(table, context, command, parent), counts_(table.counts) {}

    void OnNumberSet(const SControlRow& row) override;
    void OnCheckClicked(const SControlRow& row, bool checked) override;

  private:
    const decltype(SMosaicTable::counts)& counts_;
};
