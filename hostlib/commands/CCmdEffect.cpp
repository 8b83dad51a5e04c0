#include "host/commands/CCmdEffect.h"

#include "hostlib/graphics/DepthConversion.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/SelectionBlend.h"

CCmdEffect::CCmdEffect(const std::array<bool, 13>& flags) : flags_(flags) {}
CCmdEffect::CCmdEffect(const CCmdEffect& other)
    : VCommandWithPreview(other), flags_(other.flags_) {}

CErrorAutoThrow CCmdEffect::Setup(ICommandExecutionContext* /*context*/) { return {}; }

CErrorAutoThrow CCmdEffect::ModifyRect(CRect& /*rect*/) { return {}; }

CErrorAutoThrow CCmdEffect::Preview(CStatusControl* status, const CRowIteratorBands& source,
                                    CRowIteratorBands& destination, const CRowIterator* mask,
                                    ICommandExecutionContext* context) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        if (!source.IsAttached()) {
            return {TolmErrorCode::UnusableInput, "there is no image to work on"};
        }
        CErrorAutoThrow error = Setup(context);
        if (error.Failed()) return error;
        const bool narrowed = source.GetPixelFormat().Is16bit() && !WorksAt16Bits();
        CRowIteratorBands input = source;
        if (narrowed) {
            error = ToEightBits(source, input);
            if (error.Failed()) return error;
        }
        transparent_ = source.GetPixelFormat().IsAlphaChannelPresent();
        CStatusControl nobody;
        CStatusControl& heard = status ? *status : nobody;
        heard.LendWorkers(&HostRowWorkers());
        error = ApplyEffect(&heard, input, destination, mask, {}, context);
        if (!error.Failed() && !destination.IsAttached()) {
            error = {TolmErrorCode::NotCreated, "the effect made no picture"};
        }
        if (!error.Failed() && narrowed) {
            CRowIteratorBands wide;
            error = WidenOver(source, destination, wide);
            destination.Consume(wide);
        }
        if (!error.Failed() && mask && mask->IsAttached() && !BlendsBySelection()) {
            error = BlendBySelection(source, *mask, destination);
        }
        if (error.Failed()) destination.Destroy();
        return error;
    });
}

CErrorAutoThrow CCmdEffect::DoImpl(ICommandExecutionContext* context) {
    INGLGraphic* graphic = context ? context->Graphic() : nullptr;
    if (!graphic) return {TolmErrorCode::UnusableInput, "there is no document"};
    const CRowIteratorBands source = graphic->GetActiveImage();
    const CRowIterator selection = graphic->GetSelection();
    CStatusControl status(context->ProgressSink());
    CRowIteratorBands destination;
    CErrorAutoThrow error = Preview(&status, source, destination, &selection, context);
    if (error.Failed()) return error;
    undo_image_ = source;
    graphic->SetActiveImage(destination);
    return error;
}

CErrorAutoThrow CCmdEffect::UndoImpl(ICommandExecutionContext* context) {
    INGLGraphic* graphic = context ? context->Graphic() : nullptr;
    if (!graphic || !undo_image_.IsAttached()) {
        return {TolmErrorCode::UnusableInput, "there is nothing to undo"};
    }
    graphic->SetActiveImage(undo_image_);
    undo_image_.Destroy();
    return {};
}
