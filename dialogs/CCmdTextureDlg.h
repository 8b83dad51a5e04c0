#pragma once

#include "dialogs/CResourceParameterDlg.h"

class CCmdTextureDlg final : public CResourceParameterDlg {
  public:
    CCmdTextureDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                   CWnd* parent);
};
