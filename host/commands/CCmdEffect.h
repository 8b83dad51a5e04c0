#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "host/commands/ICmdResourceData.h"
#include "host/commands/ICommandExecutionContext.h"
#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"
#include "host/core/TUnknownImpl.h"

// A requirement that a document must meet before a command is offered.
struct SValidateEntry {
    std::int32_t requirement = 0;
    std::array<bool, 4> flags{};
    std::int32_t argument = 0;
};
using CValidateVector = std::vector<SValidateEntry>;

// What the editor does with every command.
struct HOST_API ICoreCommand : IUnknown {
    static constexpr GUID kId = MakeGuid("3F0A9C62-7B7E-4C0E-9E1B-6A2D7F5C8E41");
    virtual CErrorAutoThrow Setup(ICommandExecutionContext* context) = 0;
    virtual CErrorAutoThrow Do(ICommandExecutionContext* context) = 0;
    virtual CErrorAutoThrow Undo(ICommandExecutionContext* context) = 0;
    virtual CErrorAutoThrow Redo(ICommandExecutionContext* context) = 0;
    // A new, independent command with one reference for the caller; error 102 without memory, 101
    // without a place for it.
    virtual CErrorAutoThrow Clone(ICoreCommand** out) = 0;
    virtual bool SetValidateVector(CValidateVector& entries) = 0;
};

// What a command that can show its result before it is run offers.
struct HOST_API ICommandPreview : IUnknown {
    static constexpr GUID kId = MakeGuid("8D2C5B0F-94E3-4F5B-B1B6-2E6F0D3A7C58");
    // Computes the effect from any source into a destination, without touching the document. It
    // sets the command up for the context itself.
    virtual CErrorAutoThrow Preview(CStatusControl* status, const CRowIteratorBands& source,
                                    CRowIteratorBands& destination, const CRowIterator* mask,
                                    ICommandExecutionContext* context) = 0;
};

// Attributes, resource data and parameters: what every command has.
class HOST_API VCommandImplementation : public TUnknownCoreImpl<ICoreCommand> {
  public:
    ~VCommandImplementation() override;

    CErrorAutoThrow SetAttribute(std::int32_t attribute, std::int32_t value);
    // 0 for an attribute that was never set.
    std::int32_t GetAttribute(std::int32_t attribute) const;
    // Keeps the resource data for the command's life, with a reference of its own.
    CErrorAutoThrow BindResourceData(ICmdResourceData* data);
    ICmdResourceData* GetResourceData() const { return resource_data_.Get(); }
    // Gives the parameter repository with a reference added; it is made when there is none. Error
    // 101 without a place for it.
    CErrorAutoThrow GetParameterRepository(IParameterRepository** out, bool reset);
    // The bound repository, no reference added; null when none is bound.
    IParameterRepository* BoundRepository() const { return repository_.Get(); }
    // Whether the command runs in the editor's reduced mode. The host decides; this one has none.
    bool IsIE() const;

    bool SetValidateVector(CValidateVector& entries) override;

  protected:
    VCommandImplementation();
    // A copy has attributes, resource data and parameter values of its own.
    VCommandImplementation(const VCommandImplementation& other);
    void PushValidateEnum(CValidateVector& entries, std::int32_t requirement, bool a, bool b,
                          bool c, bool d, std::int32_t argument);

  private:
    std::map<std::int32_t, std::int32_t> attributes_;
    TRef<ICmdResourceData> resource_data_;
    TRef<IParameterRepository> repository_;
};

// A command that can be previewed: it answers ICommandPreview, too, whose reference operations
// forward to the command.
class HOST_API VCommandWithPreview : public VCommandImplementation, public ICommandPreview {
  public:
    HRESULT QueryInterface(const GUID& id, void** out) override;
    std::uint32_t AddRef() override { return VCommandImplementation::AddRef(); }
    std::uint32_t Release() override { return VCommandImplementation::Release(); }

  protected:
    VCommandWithPreview() = default;
    VCommandWithPreview(const VCommandWithPreview& other)
        : VCommandImplementation(other), ICommandPreview(other) {}
};

// The base of image effects: it prepares source, destination, selection and progress, calls
// ApplyEffect, blends by the selection, and keeps what undo needs.
class HOST_API CCmdEffect : public VCommandWithPreview {
  public:
    // The three host arguments that no effect here reads.
    struct SHostArguments {
        std::int64_t first = 0, second = 0, third = 0;
    };

    CErrorAutoThrow Setup(ICommandExecutionContext* context) override;
    // Replaces the active layer by the effect on it; error 101 without a layer, 100 when
    // cancelled; the document is changed only on success.
    CErrorAutoThrow Do(ICommandExecutionContext* context) final { return DoImpl(context); }
    CErrorAutoThrow Undo(ICommandExecutionContext* context) final { return UndoImpl(context); }
    CErrorAutoThrow Redo(ICommandExecutionContext* context) final { return DoImpl(context); }
    CErrorAutoThrow Preview(CStatusControl* status, const CRowIteratorBands& source,
                            CRowIteratorBands& destination, const CRowIterator* mask,
                            ICommandExecutionContext* context) override;

    // Turns the source into the destination: the one operation that makes an effect. The mask may
    // be null, the status is not. Called by the base only; nothing outside the destination is
    // written.
    virtual CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                        CRowIteratorBands& destination, const CRowIterator* mask,
                                        const SHostArguments& arguments,
                                        ICommandExecutionContext* context) = 0;
    // Adjusts the area that the editor asks about to what the effect touches.
    virtual CErrorAutoThrow ModifyRect(CRect& rect);
    // Whether the effect works at 16 bits itself; for one that does not, the base hands it an 8-bit
    // image and widens the result.
    virtual bool WorksAt16Bits() const { return true; }
    // Whether ApplyEffect limits its work to the mask itself, so that the base leaves it alone.
    virtual bool BlendsBySelection() const { return false; }
    // The constructor's flag at a position from 1 to 13.
    bool Flag(int position) const { return flags_[static_cast<std::size_t>(position - 1)]; }

  protected:
    explicit CCmdEffect(const std::array<bool, 13>& flags);
    CCmdEffect(const CCmdEffect& other);
    virtual CErrorAutoThrow DoImpl(ICommandExecutionContext* context);
    virtual CErrorAutoThrow UndoImpl(ICommandExecutionContext* context);
    // Whether the source of the running call has an alpha channel.
    bool SourceIsTransparent() const { return transparent_; }

  private:
    std::array<bool, 13> flags_;
    bool transparent_ = false;
    CRowIteratorBands undo_image_;
};
