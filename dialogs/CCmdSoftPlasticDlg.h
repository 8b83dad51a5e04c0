#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdSoftPlasticDlg final : public CParameterDlg {
  public:
    CCmdSoftPlasticDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                       CWnd* parent);
};
