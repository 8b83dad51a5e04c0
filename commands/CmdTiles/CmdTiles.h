#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CMemberListDlg.h"

namespace CmdTiles {

extern const SMemberListTable kDialog;
extern const SCommandDescription kDescription;

class CCmdTiles final : public TTextureCommand<CCmdTiles, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
    CErrorAutoThrow ModifyRect(CRect& rect) override;
    bool SetValidateVector(CValidateVector& entries) override;
};

class CCmdTilesDlg final : public TDialog<kDialog, CMemberListDlg> {
    using TDialog::TDialog;
};
class CCmdTilesResData final : public TTextureResData<kDescription, CCmdTilesDlg> {};

}  // namespace CmdTiles
