#pragma once

#include "commands/TextureCommand.h"

namespace CmdSoftPlastic {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdSoftPlastic final : public TTextureCommand<CCmdSoftPlastic, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdSoftPlasticDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdSoftPlasticResData final : public TTextureResData<kDescription, CCmdSoftPlasticDlg> {};

}  // namespace CmdSoftPlastic
