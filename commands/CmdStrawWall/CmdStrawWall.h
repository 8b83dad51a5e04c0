#pragma once

#include "commands/TextureCommand.h"

namespace CmdStrawWall {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdStrawWall final : public TTextureCommand<CCmdStrawWall, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdStrawWallDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdStrawWallResData final : public TTextureResData<kDescription, CCmdStrawWallDlg> {};

}  // namespace CmdStrawWall
