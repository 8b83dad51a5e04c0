#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>

#include "host/core/Guid.h"

// What makes one command differ from the others, as tables: a command's folder holds one
// SCommandDescription and the few lines of its effect.

// Ids of the strings, and of the picture, that present a command.
struct SCommandTexts {
    int textA, textId, name, threePart, textC, textB, imageId;
};

enum class EParameterKind { Integer, Boolean, TileShape, ResourceListView, Colour, String };

// How a maximum follows from the document or the editor's settings.
enum class EMaximumRule {
    Fixed,
    Scaled,      // times the editor's range scale
    CanvasSide,  // the larger side of the canvas
};

// One parameter: the row from which repository, command line, dialog and presets are made.
struct SParameterRow {
    int index;
    const wchar_t* name;
    EParameterKind kind;
    std::int32_t minimum;  // integers only
    std::int32_t maximum;
    std::int64_t defaultValue;  // integers, members, packed colours; strings start empty
    int labelId;
    int textId;
    EMaximumRule maximumRule = EMaximumRule::Fixed;
    // The default shrinks to half of a canvas side that is smaller than it.
    bool defaultFitsCanvas = false;
    std::uint32_t flags = 0xFE;
};

struct SCommandDescription {
    const wchar_t* name;
    GUID guid;
    int commandId;
    SCommandTexts texts;
    std::initializer_list<int> flags;  // constructor flags that are set, counted from 1
    std::initializer_list<std::pair<int, int>> attributes;  // in the order of setting
    std::span<const SParameterRow> parameters;              // in the order of definition
};
