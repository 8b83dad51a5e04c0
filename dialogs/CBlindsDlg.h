#pragma once

#include "dialogs/CParameterDlg.h"

class CBlindsDlg final : public CParameterDlg {
  public:
    CBlindsDlg(ICommandExecutionContext* context, VCommandImplementation* command, CWnd* parent);
};
