#pragma once

#include "commands/TextureCommand.h"

namespace CmdPolishedStone {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdPolishedStone final : public TTextureCommand<CCmdPolishedStone, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdPolishedStoneDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdPolishedStoneResData final : public TTextureResData<kDescription, CCmdPolishedStoneDlg> {
};

}  // namespace CmdPolishedStone
