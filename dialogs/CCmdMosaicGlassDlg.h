#pragma once

#include "dialogs/CMosaicDlg.h"

namespace CmdMosaicGlass {

class CCmdMosaicGlassDlg final : public CMosaicDlg {
  public:
    CCmdMosaicGlassDlg(ICommandExecutionContext* context, VCommandImplementation* command,
                       CWnd* parent);
};

}  // namespace CmdMosaicGlass
