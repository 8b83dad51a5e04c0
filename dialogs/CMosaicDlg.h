#pragma once

#include "dialogs/CParameterDlg.h"

// What the two mosaics share: while the tiles are symmetric, there are as many rows as columns.
class CMosaicDlg : public CParameterDlg {
  public:
    void ReconcileParameters() override;

  protected:
    // Indices of the parameters.
    struct SCounts {
        int symmetric, rows, columns;
    };
    CMosaicDlg(const SDialogTable& table, const SCounts& counts, ICommandExecutionContext* context,
               VCommandImplementation* command, CWnd* parent)
        : CParameterDlg(table, context, command, parent), counts_(counts) {}

    void OnNumberSet(const SControlRow& row) override;
    void OnCheckClicked(const SControlRow& row, bool checked) override;

  private:
    SCounts counts_;
};
