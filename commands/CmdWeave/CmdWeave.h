#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CGapColourDlg.h"

namespace CmdWeave {

extern const SGapColourTable kDialog;
extern const SCommandDescription kDescription;

class CCmdWeave final : public TTextureCommand<CCmdWeave, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
    bool WorksAt16Bits() const override { return false; }
};

class CWeaveDlg final : public TDialog<kDialog, CGapColourDlg> {
    using TDialog::TDialog;
};
class CCmdWeaveResData final : public TTextureResData<kDescription, CWeaveDlg> {};

}  // namespace CmdWeave
