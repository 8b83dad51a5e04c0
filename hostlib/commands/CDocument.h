#pragma once

#include "host/commands/ICommandExecutionContext.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"
#include "host/core/TUnknownImpl.h"

// A document of one layer on a canvas.
class HOST_API CDocument : public TUnknownImpl<CDocument, INGLGraphic> {
  public:
    explicit CDocument(CSize canvas) : canvas_(canvas) {}

    int GetWidth() const override { return canvas_.cx; }
    int GetHeight() const override { return canvas_.cy; }
    CRowIteratorBands GetActiveImage() const override { return image_; }
    void SetActiveImage(const CRowIteratorBands& image) override { image_ = image; }
    CRowIterator GetSelection() const override { return selection_; }
    void SetSelection(const CRowIterator& selection) { selection_ = selection; }
    SColorSpecRGB GetColorSpec() const override { return color_spec_; }
    void SetColorSpec(const SColorSpecRGB& color_spec) { color_spec_ = color_spec; }

  private:
    CSize canvas_;
    CRowIteratorBands image_;
    CRowIterator selection_;
    SColorSpecRGB color_spec_;
};

// A context put together by the program: any part may be null. The sink is not owned.
class HOST_API CExecutionContext
    : public TUnknownImpl<CExecutionContext, ICommandExecutionContext> {
  public:
    CExecutionContext(const TRef<INGLGraphic>& graphic, const TRef<IResourceLibrary>& resources,
                      IProgressSink* sink)
        : graphic_(graphic), resources_(resources), sink_(sink) {}

    INGLGraphic* Graphic() override { return graphic_.Get(); }
    IResourceLibrary* ResourceLibrary() override { return resources_.Get(); }
    IProgressSink* ProgressSink() override { return sink_; }

  private:
    TRef<INGLGraphic> graphic_;
    TRef<IResourceLibrary> resources_;
    IProgressSink* sink_;
};
