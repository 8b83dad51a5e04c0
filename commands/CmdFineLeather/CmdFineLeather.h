#pragma once

#include "commands/TextureCommand.h"

namespace CmdFineLeather {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdFineLeather final : public TWholeImageCommand<CCmdFineLeather, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdFineLeatherDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdFineLeatherResData final : public TTextureResData<kDescription, CCmdFineLeatherDlg> {};

}  // namespace CmdFineLeather
