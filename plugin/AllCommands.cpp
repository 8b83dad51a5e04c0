#include "plugin/AllCommands.h"

#include "commands/CmdBlinds/CmdBlinds.h"
#include "commands/CmdFineLeather/CmdFineLeather.h"
#include "commands/CmdFur/CmdFur.h"
#include "commands/CmdMosaicAntique/CmdMosaicAntique.h"
#include "commands/CmdMosaicGlass/CmdMosaicGlass.h"
#include "commands/CmdPolishedStone/CmdPolishedStone.h"
#include "commands/CmdRoughLeather/CmdRoughLeather.h"
#include "commands/CmdSandstone/CmdSandstone.h"
#include "commands/CmdSculpture/CmdSculpture.h"
#include "commands/CmdSoftPlastic/CmdSoftPlastic.h"
#include "commands/CmdStrawWall/CmdStrawWall.h"
#include "commands/CmdTexture/CmdTexture.h"
#include "commands/CmdTiles/CmdTiles.h"
#include "commands/CmdWeave/CmdWeave.h"

namespace {

// Makes a command with its resource data and hands it to the sink, which keeps it.
template <class Command, class ResourceData, const SCommandDescription& kDescription>
// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature of the framework's factories
void MakeComponent(IComponentSink* sink, CString module_name, const wchar_t* /*component*/) {
    const TRef<Command> command(new Command);
    for (const auto& [attribute, value] : kDescription.kind.attributes) {
        command->SetAttribute(attribute, value).Ignore();
    }
    const TRef<ICmdResourceData> data(new ResourceData);
    command->BindResourceData(data.Get()).Ignore();
    if (sink) sink->AddComponent(command.Get(), module_name);
}

template <class Command, class ResourceData, const SCommandDescription& kDescription>
constexpr SCommandEntry kEntry{&kDescription, &MakeComponent<Command, ResourceData, kDescription>};

}  // namespace

std::span<const SCommandEntry> AllCommands() {
    static constexpr SCommandEntry kCommands[] = {
        kEntry<CmdBlinds::CCmdBlinds, CmdBlinds::CCmdBlindsResData, CmdBlinds::kDescription>,
        kEntry<CmdFineLeather::CCmdFineLeather, CmdFineLeather::CCmdFineLeatherResData,
               CmdFineLeather::kDescription>,
        kEntry<CmdFur::CCmdFur, CmdFur::CCmdFurResData, CmdFur::kDescription>,
        kEntry<CmdMosaicAntique::CCmdMosaicAntique, CmdMosaicAntique::CCmdMosaicAntiqueResData,
               CmdMosaicAntique::kDescription>,
        kEntry<CmdMosaicGlass::CCmdMosaicGlass, CmdMosaicGlass::CCmdMosaicGlassResData,
               CmdMosaicGlass::kDescription>,
        kEntry<CmdPolishedStone::CCmdPolishedStone, CmdPolishedStone::CCmdPolishedStoneResData,
               CmdPolishedStone::kDescription>,
        kEntry<CmdRoughLeather::CCmdRoughLeather, CmdRoughLeather::CCmdRoughLeatherResData,
               CmdRoughLeather::kDescription>,
        kEntry<CmdSandstone::CCmdSandstone, CmdSandstone::CCmdSandstoneResData,
               CmdSandstone::kDescription>,
        kEntry<CmdSculpture::CCmdSculpture, CmdSculpture::CCmdSculptureResData,
               CmdSculpture::kDescription>,
        kEntry<CmdSoftPlastic::CCmdSoftPlastic, CmdSoftPlastic::CCmdSoftPlasticResData,
               CmdSoftPlastic::kDescription>,
        kEntry<CmdStrawWall::CCmdStrawWall, CmdStrawWall::CCmdStrawWallResData,
               CmdStrawWall::kDescription>,
        kEntry<CmdTexture::CCmdTexture, CmdTexture::CCmdTextureResData, CmdTexture::kDescription>,
        kEntry<CmdTiles::CCmdTiles, CmdTiles::CCmdTilesResData, CmdTiles::kDescription>,
        kEntry<CmdWeave::CCmdWeave, CmdWeave::CCmdWeaveResData, CmdWeave::kDescription>,
    };
    return kCommands;
}
