#pragma once

#include "commands/TextureCommand.h"

namespace CmdRoughLeather {

extern const SDialogTable kDialog;
extern const SCommandDescription kDescription;

class CCmdRoughLeather final : public TTextureCommand<CCmdRoughLeather, kDescription> {
  public:
    CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
};

class CCmdRoughLeatherDlg final : public TDialog<kDialog> {
    using TDialog::TDialog;
};
class CCmdRoughLeatherResData final : public TTextureResData<kDescription, CCmdRoughLeatherDlg> {};

}  // namespace CmdRoughLeather
