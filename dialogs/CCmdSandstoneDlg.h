#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdSandstoneDlg final : public CParameterDlg {
  public:
    CCmdSandstoneDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                     CWnd* parent);
};
