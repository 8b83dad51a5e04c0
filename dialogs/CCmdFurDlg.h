#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdFurDlg final : public CParameterDlg {
  public:
    CCmdFurDlg(ICommandExecutionContext* context, VCommandImplementation* command, CWnd* parent);
};
