#pragma once

#include "commands/TextureCommand.h"

namespace CmdSandstone {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdSandstone final : public TTextureCommand<CCmdSandstone, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdSandstoneDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdSandstoneResData final : public TTextureResData<kDescription, CCmdSandstoneDlg> {};

}  // namespace CmdSandstone
