#pragma once

#include "commands/TextureCommand.h"
#include "dialogs/CMosaicDlg.h"

namespace CmdMosaicAntique {

extern const SMosaicTable kDialog;
extern const SCommandDescription kDescription;

class CCmdMosaicAntique final : public TWholeImageCommand<CCmdMosaicAntique, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdMosaicAntiqueDlg final : public TDialog<kDialog, CMosaicDlg> {
    using TDialog::TDialog;
};
class CCmdMosaicAntiqueResData final : public TTextureResData<kDescription, CCmdMosaicAntiqueDlg> {
};

}  // namespace CmdMosaicAntique
