#pragma once

#include "host/commands/ICommandExecutionContext.h"
#include "host/core/Geometry.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"

// What commands ask of their execution context, which may be null.
class HOST_API CCmdHelpers {
  public:
    explicit CCmdHelpers(ICommandExecutionContext* context) : context_(context) {}

    // The document's graphic; error 101 when there is none.
    CErrorAutoThrow GetGraphic(TRef<INGLGraphic>& graphic) const;
    // The resource library; error 101 when there is none.
    CErrorAutoThrow GetResourceLibrary(TRef<IResourceLibrary>& library) const;

    // A side of the canvas where there is no document.
    static constexpr int kSideWithoutDocument = 32767;
    // Of the document's canvas; without a document, of a square of that side.
    CSize CanvasSize() const {
        TRef<INGLGraphic> graphic;
        GetGraphic(graphic).Ignore();
        if (!graphic) return {kSideWithoutDocument, kSideWithoutDocument};
        return {graphic->GetWidth(), graphic->GetHeight()};
    }

  private:
    ICommandExecutionContext* context_;
};
