#include "hostlib/windowing/DialogTemplate.h"

#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/core/CErrorAutoThrow.h"
#include "hostlib/windowing/SDialogState.h"

namespace {

using nlohmann::json;

CString TextOf(const json& object, const char* key) {
    return FromUtf8(object.value(key, std::string()));
}

EControlKind KindOf(const std::string& name) {
    static const std::map<std::string, EControlKind> kinds = {
        {"label", EControlKind::Label},       {"number", EControlKind::Number},
        {"check", EControlKind::Check},       {"swatch", EControlKind::Swatch},
        {"dial", EControlKind::Dial},         {"list", EControlKind::List},
        {"resource", EControlKind::Resource}, {"button", EControlKind::Button}};
    return kinds.at(name);
}

// A number beyond those of an int, which the JSON library would convert all the same, is no id.
int IdOf(const json& number) {
    if (!number.is_number_integer()) throw std::invalid_argument("an id is a whole number");
    return number.get<int>();
}

STemplateRow ParseRow(const json& data) {
    STemplateRow row{TextOf(data, "label"), IdOf(data.value("labelId", json(0))), {}};
    for (const json& control : data.at("controls")) {
        row.controls.push_back({IdOf(control.at("id")),
                                KindOf(control.at("kind").get<std::string>()),
                                TextOf(control, "text")});
    }
    return row;
}

}  // namespace

SDialogTemplate ParseDialogTemplate(int id, const std::string& text) {
    try {
        const json data = json::parse(text);
        SDialogTemplate made{id, TextOf(data, "title"), {}};
        for (const json& group : data.at("groups")) {
            STemplateGroup& added = made.groups.emplace_back();
            added.title = TextOf(group, "title");
            for (const json& row : group.at("rows")) added.rows.push_back(ParseRow(row));
        }
        return made;
    } catch (const std::exception&) {
        throw CNException(TolmErrorCode::ReadFailed,
                          "dialog template " + std::to_string(id) + " is not readable");
    }
}

SControlState* SDialogState::Find(int id) {
    const auto found = controls.find(id);
    return found == controls.end() ? nullptr : &found->second;
}

void SDialogState::MakeControls() {
    const auto make = [&](int id, EControlKind kind, const CString& text) {
        SControlState& state = controls[id];
        state.id = id;
        state.kind = kind;
        state.text = text;
        if (kind == EControlKind::Dial) state.maximum = 359;
    };
    for (const STemplateGroup& group : description.groups) {
        for (const STemplateRow& row : group.rows) {
            if (row.label_id) make(row.label_id, EControlKind::Label, row.label);
            for (const SControlTemplate& control : row.controls) {
                make(control.id, control.kind, control.text);
            }
        }
    }
}
