#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdRoughLeatherDlg final : public CParameterDlg {
  public:
    CCmdRoughLeatherDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                        CWnd* parent);
};
