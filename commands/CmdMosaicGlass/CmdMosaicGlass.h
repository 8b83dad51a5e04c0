#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CMosaicDlg.h"

namespace CmdMosaicGlass {

extern const SMosaicTable kDialog;
extern const SCommandDescription kDescription;

class CCmdMosaicGlass final : public TWholeImageCommand<CCmdMosaicGlass, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdMosaicGlassDlg final : public TDialog<kDialog, CMosaicDlg> {
    using TDialog::TDialog;
};
class CCmdMosaicGlassResData final : public TTextureResData<kDescription, CCmdMosaicGlassDlg> {};

}  // namespace CmdMosaicGlass
