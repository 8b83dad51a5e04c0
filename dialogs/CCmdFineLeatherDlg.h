#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdFineLeatherDlg final : public CParameterDlg {
  public:
    CCmdFineLeatherDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                       CWnd* parent);
};
