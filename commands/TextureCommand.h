#pragma once

#include <array>

#include "host/commands/CCmdEffect.h"
#include "host/dialogs/CPreviewChild.h"
#include "host/graphics/SReliefSettings.h"
#include "module/CTolmResourceManager.h"
#include "module/ParameterTable.h"
#include "module/TComponentResourceData.h"

// The thirteen constructor flags of a command's description.
std::array<bool, 13> FlagsOf(const SCommandDescription& description);

// A command of this module: everything but its ApplyEffect, and in some its ModifyRect, follows
// from its description.
template <class Class, const SCommandDescription& kDescription>
class TTextureCommand : public CCmdEffect {
  public:
    TTextureCommand() : CCmdEffect(FlagsOf(kDescription)) {}
    TTextureCommand(const TTextureCommand&) = default;

    CErrorAutoThrow Clone(ICoreCommand** out) override {
        return CatchErrors([&]() -> CErrorAutoThrow {
            *out = new Class(static_cast<const Class&>(*this));
            (*out)->AddRef();
            return {};
        });
    }
};

// Runs a dialog that was made for a command; error 100 when it was cancelled. Its template comes
// from the module's resources.
CErrorAutoThrow RunDialog(CPreviewChild& dialog);

// The resource data of a command of this module, and the dialog that edits its parameters.
template <const SCommandDescription& kDescription, class Dialog>
class TTextureResData : public TCommandResourceData<ICmdResourceData> {
  public:
    // The argument keeps the module's resources current while the texts are loaded.
    explicit TTextureResData(const CTolmResourceManager& = CTolmResourceManager(L"CmdTexture"))
        : TCommandResourceData(kDescription) {}

    CErrorAutoThrow DefineParameters(ICommandExecutionContext* context,
                                     IParameterRepository* repository) override {
        return DefineParameterTable(kDescription.parameters, context, repository);
    }
    CErrorAutoThrow ShowDialog(ICommandExecutionContext* context,
                               VCommandImplementation* command) override {
        return CatchErrors([&] {
            Dialog dialog(context, command, nullptr);
            return RunDialog(dialog);
        });
    }
};

// Reads the parameters of a command by index. What cannot be read, for want of a repository or of
// the parameter, keeps the value given as otherwise.
class CParameterReader {
  public:
    explicit CParameterReader(IParameterRepository* repository) : repository_(repository) {}

    int Integer(int index, int otherwise) const;
    bool Boolean(int index, bool otherwise) const;
    int Member(int index, int otherwise) const;
    COLORREF Colour(int index, COLORREF otherwise) const;
    CString Text(int index) const;

  private:
    IParameterRepository* repository_;
};

// Reads the parameters of a relief, which lie at other indices in every command that has them; what
// cannot be read keeps its value.
struct SReliefIndices {
    int ambience, angle, color, depth, elevation, intensity, shininess, smoothness;
};
void ReadRelief(const CParameterReader& parameters, const SReliefIndices& at,
                SReliefSettings& settings);

// The colour specification of the document; the usual one without a document.
SColorSpecRGB ColorSpec(ICommandExecutionContext* context);

// The height of the document's canvas; without a document, the bottom edge of the image.
int CanvasHeight(ICommandExecutionContext* context, const CRowIteratorBands& source);

// The density of a texture whose strokes are counted per image: a source of another size than the
// canvas, such as a reduced preview, gets its share by width, at least 1.
int DensityFor(ICommandExecutionContext* context, const CRowIteratorBands& source, int density);
