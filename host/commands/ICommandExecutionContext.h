#pragma once

#include <vector>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/CString.h"
#include "host/core/IUnknown.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/SColorSpecRGB.h"

// The graphic of a document: the canvas and the layer that commands work on.
struct INGLGraphic : IUnknown {
    static constexpr GUID kId = MakeGuid("B2A0B6AF-3C8E-4E0B-8F6D-7C64E9D9F1A3");
    // Canvas size in pixels.
    virtual int GetWidth() const = 0;
    virtual int GetHeight() const = 0;
    // A handle on the active layer's pixels; unattached when there is no layer.
    virtual CRowIteratorBands GetActiveImage() const = 0;
    virtual void SetActiveImage(const CRowIteratorBands& image) = 0;
    // The selection as an 8-bit grey image of the layer's size, white where selected; unattached
    // when everything is selected.
    virtual CRowIterator GetSelection() const = 0;
    virtual SColorSpecRGB GetColorSpec() const = 0;
};

// What a library holds under a name.
struct SResourceEntry {
    CString name;
    CString category;  // may be empty
};

// A store of named images. Error 104 for a name that is not in it, 105 for one that cannot be read.
struct IResourceLibrary : IUnknown {
    static constexpr GUID kId = MakeGuid("9A6B40C5-1E0C-4D55-A0C5-5C6E5F1D7B84");
    // `type` is 10 for patterns and 44 for textures; an empty name is the first entry of the kind.
    virtual CErrorAutoThrow LoadImage(int type, const CString& name, CRowIteratorBands& image) = 0;
    // What there is of a kind now, in the order in which it is shown. A library that cannot be
    // browsed has nothing to show.
    virtual std::vector<SResourceEntry> Entries(int /*type*/) { return {}; }
    // A small version to choose by, at most 128 pixels a side where the library can tell.
    virtual CErrorAutoThrow LoadThumbnail(int type, const CString& name, CRowIteratorBands& image) {
        return LoadImage(type, name, image);
    }
};

// What a command runs in: the document, the resources, and who hears of progress. Any of them may
// be missing.
struct ICommandExecutionContext : IUnknown {
    static constexpr GUID kId = MakeGuid("C7D09B1E-52A7-4B0E-93F4-8E0C8B5A6D35");
    // References are not added.
    virtual INGLGraphic* Graphic() = 0;
    virtual IResourceLibrary* ResourceLibrary() = 0;
    virtual IProgressSink* ProgressSink() = 0;
};
