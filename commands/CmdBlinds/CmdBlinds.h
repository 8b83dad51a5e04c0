#pragma once

#include "commands/TextureCommand.h"

namespace CmdBlinds {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdBlinds final : public TTextureCommand<CCmdBlinds, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CBlindsDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdBlindsResData final : public TTextureResData<kDescription, CBlindsDlg> {};

}  // namespace CmdBlinds
