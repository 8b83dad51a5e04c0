#pragma once

#include "commands/TextureCommand.h"

namespace CmdFur {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdFur final : public TTextureCommand<CCmdFur, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdFurDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdFurResData final : public TTextureResData<kDescription, CCmdFurDlg> {};

}  // namespace CmdFur
