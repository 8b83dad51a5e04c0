#pragma once

#include "dialogs/CMosaicDlg.h"

namespace CmdMosaicAntique {

class CCmdMosaicAntiqueDlg final : public CMosaicDlg {
  public:
    CCmdMosaicAntiqueDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                         CWnd* parent);
};

}  // namespace CmdMosaicAntique
