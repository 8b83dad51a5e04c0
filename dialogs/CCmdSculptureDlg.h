#pragma once

#include "dialogs/CResourceParameterDlg.h"

class CCmdSculptureDlg final : public CResourceParameterDlg {
  public:
    CCmdSculptureDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                     CWnd* parent);
};
