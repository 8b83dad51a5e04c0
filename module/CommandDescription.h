#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "host/commands/IParameterRepository.h"
#include "host/core/Guid.h"

// What makes one command differ from the others, as tables: a command's folder holds one
// SCommandDescription and the few lines of its effect.

// Ids of the strings, and of the picture, that present a command.
struct SCommandTexts {
    int text_a, text_id, name, three_part, text_c, text_b, image_id;
};

// The ids of most commands run on from the first.
constexpr SCommandTexts TextsFrom(int first) {
    return {.text_a = first,
            .text_id = first + 1,
            .name = first + 2,
            .three_part = first + 4,
            .text_c = first + 3,
            .text_b = first + 5,
            .image_id = first + 6};
}

// How a maximum follows from the document or the editor's settings.
enum class EMaximumRule {
    Fixed,
    Scaled,      // times the editor's range scale
    CanvasSide,  // the larger side of the canvas
};

// The editor's definition flags of a parameter.
constexpr std::uint32_t kUsualParameter = 0xFE;
constexpr std::uint32_t kLibraryParameter = 0x8FE;
constexpr std::uint32_t kLibraryViewParameter = 0x8C0;

// One parameter: the row from which repository, command line, dialog and presets are made.
struct SParameterRow {
    int index;
    const wchar_t* name;
    EParameterType type;
    int label_id;
    int text_id;
    std::int64_t default_value = 0;  // integers, members, packed colours; strings start empty
    std::int32_t minimum = 0;        // integers only
    std::int32_t maximum = 0;
    const wchar_t* members = nullptr;  // the editor's enumeration that the value belongs to
    std::span<const int> member_label_ids = {};
    std::uint32_t flags = kUsualParameter;
    EMaximumRule maximum_rule = EMaximumRule::Fixed;
    bool default_fits_canvas = false;

    // The default shrinks to half of a canvas side that is smaller than it.
    constexpr SParameterRow FittingTheCanvas() const {
        SParameterRow row = *this;
        row.default_fits_canvas = true;
        return row;
    }
};

// The rows that tables of parameters are made of; each ends with the ids of its label and text.
namespace parameter {
constexpr SParameterRow Integer(int index, const wchar_t* name, std::int32_t minimum,
                                std::int32_t maximum, std::int32_t value, int label, int text) {
    return {index, name, EParameterType::Integer, label, text, value, minimum, maximum};
}
// The maximum grows with the editor's range scale.
constexpr SParameterRow ScaledInteger(int index, const wchar_t* name, std::int32_t minimum,
                                      std::int32_t maximum, std::int32_t value, int label,
                                      int text) {
    SParameterRow row = Integer(index, name, minimum, maximum, value, label, text);
    row.maximum_rule = EMaximumRule::Scaled;
    return row;
}
// The maximum is the larger side of the canvas.
constexpr SParameterRow CanvasInteger(int index, const wchar_t* name, std::int32_t minimum,
                                      std::int32_t value, int label, int text) {
    SParameterRow row = Integer(index, name, minimum, 0, value, label, text);
    row.maximum_rule = EMaximumRule::CanvasSide;
    return row;
}
constexpr SParameterRow Colour(int index, const wchar_t* name, COLORREF value, int label,
                               int text) {
    return {index, name, EParameterType::Colour, label, text, value};
}
constexpr SParameterRow Boolean(int index, const wchar_t* name, bool value, int label, int text) {
    return {.index = index,
            .name = name,
            .type = EParameterType::Boolean,
            .label_id = label,
            .text_id = text,
            .default_value = value ? 1 : 0,
            .members = L"Boolean"};
}
constexpr SParameterRow Member(int index, const wchar_t* name, const wchar_t* members, int value,
                               int label, int text, std::span<const int> member_labels = {}) {
    return {.index = index,
            .name = name,
            .type = EParameterType::Enumeration,
            .label_id = label,
            .text_id = text,
            .default_value = value,
            .members = members,
            .member_label_ids = member_labels};
}
// The name of an entry or a category of the resource library.
constexpr SParameterRow LibraryName(int index, const wchar_t* name, int label, int text) {
    return {.index = index,
            .name = name,
            .type = EParameterType::String,
            .label_id = label,
            .text_id = text,
            .flags = kLibraryParameter};
}
// How the library is shown.
constexpr SParameterRow LibraryView(int index, const wchar_t* name, int value, int label,
                                    int text) {
    SParameterRow row = Member(index, name, L"ResourceListView", value, label, text);
    row.flags = kLibraryViewParameter;
    return row;
}
}  // namespace parameter

// The constructor flags of a command that are set, counted from 1, and its attributes in the order
// of setting.
struct SCommandKind {
    std::span<const int> flags;
    std::span<const std::pair<int, int>> attributes;
};

struct SCommandDescription {
    const wchar_t* name;
    GUID guid;
    int command_id;
    SCommandTexts texts;
    const SCommandKind& kind;
    std::span<const SParameterRow> parameters;  // in the order of definition
};
