#pragma once

#include "commands/TextureCommand.h"

namespace CmdFur {

extern const SCommandDescription kDescription;

class CCmdFur final : public TTextureCommand<CCmdFur, kDescription> {
  public:
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& arguments,
                                ICommandExecutionContext* context) override;
};

class CCmdFurResData final : public TTextureResData<kDescription> {};

}  // namespace CmdFur
