#pragma once

#include "dialogs/CParameterDlg.h"

class CCmdPolishedStoneDlg final : public CParameterDlg {
  public:
    CCmdPolishedStoneDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                         CWnd* parent);
};
