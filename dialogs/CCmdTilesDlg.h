#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdTilesDlg final : public CParameterDlg {
  public:
    CCmdTilesDlg(ICommandExecutionContext* context, VCommandImplementation* command, CWnd* parent);

  protected:
    void ExchangeControl(CDataExchange* exchange, const SControlRow& row) override;
    void SetUpList(const SControlRow& row) override;
    void ShowList(const SControlRow& row) override;
    void OnListChosen(const SControlRow& row) override;

  private:
    CComboBox shapes_;
};
