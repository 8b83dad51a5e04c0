#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdStrawWallDlg final : public CParameterDlg {
  public:
    CCmdStrawWallDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                     CWnd* parent);
    // Exchanges nothing.
    void DoDataExchange(CDataExchange* exchange) override;
};
