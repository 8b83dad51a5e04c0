#pragma once

#include <array>

#include "commands/CommandKinds.h"
#include "dialogs/CParameterDlg.h"
#include "host/commands/CCmdEffect.h"
#include "host/graphics/SReliefSettings.h"
#include "module/CTolmResourceManager.h"
#include "module/ParameterTable.h"
#include "module/TComponentResourceData.h"

// The thirteen constructor flags of a kind of command.
std::array<bool, 13> FlagsOf(const SCommandKind& kind);

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

// What the editor gives an effect to work on; mask and context may be null.
struct SRun {
    CStatusControl* status;  // never null
    CRowIteratorBands& source;
    CRowIteratorBands& destination;
    const CRowIterator* mask;
    ICommandExecutionContext* context;
};

// A command of this module: everything but what its effect does with its parameters, and in some
// its ModifyRect, follows from its description. The class has
//   CErrorAutoThrow Apply(const SRun& run, const CParameterReader& read);
template <class Class, const SCommandDescription& kDescription>
class TTextureCommand : public CCmdEffect {
  public:
    TTextureCommand() : CCmdEffect(FlagsOf(kDescription.kind)) {}
    TTextureCommand(const TTextureCommand&) = default;

    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* mask,
                                const SHostArguments& /*arguments*/,
                                ICommandExecutionContext* context) override {
        return CatchErrors([&] {
            CStatusControl nobody;
            return static_cast<Class*>(this)->Apply(
                {status ? status : &nobody, source, destination, mask, context},
                CParameterReader(BoundRepository()));
        });
    }

    CErrorAutoThrow Clone(ICoreCommand** out) override {
        if (!out) return TolmErrorCode::UnusableInput;
        return CatchErrors([&]() -> CErrorAutoThrow {
            *out = new Class(static_cast<const Class&>(*this));
            (*out)->AddRef();
            return {};
        });
    }
};

// A command whose effect reaches over the whole image: no part of it can be asked about alone.
template <class Class, const SCommandDescription& kDescription>
class TWholeImageCommand : public TTextureCommand<Class, kDescription> {
  public:
    CErrorAutoThrow ModifyRect(CRect& rect) override {
        rect.SetRectEmpty();
        return {};
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
