#include "adapters/gegl/Properties.h"

#include <algorithm>
#include <cctype>
#include <list>

namespace {

constexpr auto kFlags = static_cast<GParamFlags>(static_cast<int>(G_PARAM_READWRITE) |
                                                 static_cast<int>(G_PARAM_CONSTRUCT) |
                                                 static_cast<int>(GEGL_PARAM_PAD_INPUT));

// A kind of specification like GEGL's own, but that it takes every value of its type.
GType Unchecked(GType parent, const char* name) {
    if (const GType known = g_type_from_name(name)) return known;
    GTypeQuery sizes;
    g_type_query(parent, &sizes);
    GTypeInfo info{};
    info.class_size = static_cast<guint16>(sizes.class_size);
    info.instance_size = static_cast<guint16>(sizes.instance_size);
    info.class_init = [](gpointer made, gpointer) {
        static_cast<GParamSpecClass*>(made)->value_validate = nullptr;
    };
    return g_type_register_static(parent, name, &info, static_cast<GTypeFlags>(0));
}

template <class Spec>
Spec* New(GType kind, GType value_type, const std::string& name, const char* label,
          const char* description) {
    auto* spec =
        static_cast<Spec*>(g_param_spec_internal(kind, name.c_str(), label, description, kFlags));
    G_PARAM_SPEC(spec)->value_type = value_type;
    return spec;
}

bool EndsWith(const std::string& text, const char* end) { return text.ends_with(end); }

// Parameters whose ranges grow and shrink with the canvas are lengths on it.
bool FollowsCanvas(const cmdtexture_library& library, const std::string& effect,
                   std::size_t index) {
    cmdtexture_effect* made = nullptr;
    if (cmdtexture_effect_new(&library, effect.c_str(), &made, nullptr) != CMDTEXTURE_OK)
        return false;
    const TOwned<cmdtexture_effect> probe(made);
    const int before = cmdtexture_parameter_at(made, index)->maximum;
    return cmdtexture_effect_set_canvas(made, 1000, 1000, nullptr) == CMDTEXTURE_OK &&
           cmdtexture_parameter_at(made, index)->maximum != before;
}

GParamSpec* Integer(const std::string& name, const cmdtexture_parameter& parameter,
                    bool follows_canvas) {
    auto* spec = New<GeglParamSpecInt>(Unchecked(GEGL_TYPE_PARAM_INT, "CmdTextureParamInt"),
                                       G_TYPE_INT, name, parameter.label, parameter.description);
    const bool is_bearing = EndsWith(parameter.name, "Angle");
    spec->parent_instance.minimum = spec->ui_minimum = parameter.minimum;
    spec->parent_instance.maximum = spec->ui_maximum = parameter.maximum;
    spec->parent_instance.default_value = static_cast<gint>(parameter.default_number);
    // GIMP gives a dial to what turns through exactly 360 degrees, for which an integer is none.
    if (is_bearing) spec->ui_maximum = std::min(spec->ui_maximum, 359);
    spec->ui_gamma = follows_canvas ? 2.0 : 1.0;
    spec->ui_step_small = 1;
    spec->ui_step_big = std::max(1, std::min(10, (parameter.maximum - parameter.minimum) / 10));
    GParamSpec* made = G_PARAM_SPEC(spec);
    if (is_bearing) gegl_param_spec_set_property_key(made, "direction", "cw");
    if (is_bearing || EndsWith(parameter.name, "Elevation")) {
        gegl_param_spec_set_property_key(made, "unit", "degree");
    }
    if (follows_canvas) {
        gegl_param_spec_set_property_key(made, "unit", "pixel-distance");
        gegl_param_spec_set_property_key(made, "axis", "x");
    }
    return made;
}

struct SMember {
    std::string nick, label;
};
GParamSpec* Enumeration(const std::string& type_name, const std::string& name,
                        const cmdtexture_parameter& parameter, int first, int default_value,
                        const std::vector<SMember>& members) {
    GType type = g_type_from_name(type_name.c_str());
    if (!type) {
        // Kept for good, as the type is.
        static auto* const kept = new std::list<std::vector<GEnumValue>>;
        std::vector<GEnumValue>& values = kept->emplace_back();
        for (const SMember& member : members) {
            values.push_back({first + static_cast<gint>(values.size()),
                              g_intern_string(member.label.c_str()),
                              g_intern_string(member.nick.c_str())});
        }
        values.push_back({});
        type = g_enum_register_static(type_name.c_str(), values.data());
    }
    auto* spec = New<GParamSpecEnum>(Unchecked(GEGL_TYPE_PARAM_ENUM, "CmdTextureParamEnum"), type,
                                     name, parameter.label, parameter.description);
    spec->enum_class = static_cast<GEnumClass*>(g_type_class_ref(type));
    spec->default_value = default_value;
    return G_PARAM_SPEC(spec);
}

// A word that programs which store values without quotes can read again.
std::string Nick(const std::string& name, const std::vector<SMember>& taken) {
    std::string word = name;
    for (char& c : word) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') c = '-';
    }
    std::string nick = word;
    for (int i = 2; std::any_of(taken.begin(), taken.end(),
                                [&](const SMember& member) { return member.nick == nick; });
         ++i) {
        nick = word + '-' + std::to_string(i);
    }
    return nick;
}

// A list of the pictures that there are. The first stands for the first of the library, whatever
// that is when the effect runs.
SProperty PictureList(const cmdtexture_library& library, const std::string& type_name,
                      const cmdtexture_parameter& parameter) {
    const TOwned<char*> found(cmdtexture_resource_names(&library, parameter.resource, nullptr));
    SProperty property{.parameter = parameter.name};
    std::vector<SMember> members;
    for (char** name = found.get(); name && *name; ++name) {
        members.push_back({Nick(*name, members), *name});
        property.names.emplace_back(members.size() == 1 ? "" : *name);
    }
    if (members.empty()) {
        members.push_back({"none", "-"});
        property.names.emplace_back();
    }
    std::string name = parameter.name;
    name.erase(name.size() - (EndsWith(name, "Name") ? 4 : 0));
    property.spec = Enumeration(type_name + name, KebabCase(name), parameter, 0, 0, members);
    return property;
}

// Dialogs leave it out: a list stands for it, or it only arranges another dialog.
GParamSpec* Hidden(GParamSpec* spec) {
    gegl_param_spec_set_property_key(spec, "visible", "0");
    return spec;
}

GParamSpec* Side(const char* name, const char* label) {
    return Hidden(gegl_param_spec_int(
        name, label, "Size of the document that the picture is a part of, in pixels; 0: unknown", 0,
        65535, 0, 0, 65535, 1.0, kFlags));
}

}  // namespace

std::string KebabCase(const std::string& name) {
    std::string kebab;
    for (const char c : name) {
        if (std::isupper(static_cast<unsigned char>(c)) && !kebab.empty()) kebab += '-';
        kebab += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return kebab;
}

std::vector<SProperty> MakeProperties(const cmdtexture_library& library,
                                      const cmdtexture_effect& effect) {
    const std::string effect_name = cmdtexture_effect_name(&effect);
    const std::string type_name = "CmdTexture" + effect_name;
    std::vector<SProperty> properties;
    for (std::size_t i = 0; const auto* parameter = cmdtexture_parameter_at(&effect, i); ++i) {
        const std::string name = KebabCase(parameter->name);
        GParamSpec* spec = nullptr;
        switch (parameter->type) {
            case CMDTEXTURE_INTEGER:
                spec = Integer(name, *parameter, FollowsCanvas(library, effect_name, i));
                break;
            case CMDTEXTURE_BOOLEAN:
                spec = g_param_spec_boolean(name.c_str(), parameter->label, parameter->description,
                                            parameter->default_number != 0, kFlags);
                break;
            case CMDTEXTURE_ENUMERATION: {
                std::vector<SMember> members;
                for (std::size_t m = 0; m < parameter->member_count; ++m) {
                    members.push_back({parameter->members[m], parameter->member_labels[m]});
                }
                spec =
                    Enumeration(type_name + parameter->name, name, *parameter, parameter->minimum,
                                static_cast<int>(parameter->default_number), members);
                // How the effect's own dialog lists pictures.
                if (EndsWith(parameter->name, "View")) Hidden(spec);
                break;
            }
            case CMDTEXTURE_COLOUR:
                spec = gegl_param_spec_color_from_string(name.c_str(), parameter->label,
                                                         parameter->description,
                                                         parameter->default_text, kFlags);
                break;
            case CMDTEXTURE_STRING:
                if (parameter->resource != CMDTEXTURE_NO_RESOURCE) {
                    properties.push_back(PictureList(library, type_name, *parameter));
                }
                spec = Hidden(gegl_param_spec_string(name.c_str(), parameter->label,
                                                     parameter->description, FALSE, FALSE,
                                                     parameter->default_text, kFlags));
                break;
        }
        properties.push_back({.spec = spec, .parameter = parameter->name});
    }
    properties.push_back({.spec = Side("canvas-width", "Canvas width"), .parameter = ""});
    properties.push_back({.spec = Side("canvas-height", "Canvas height"), .parameter = ""});
    return properties;
}

bool IsDefault(const SProperty& property, const GValue& value) {
    return g_param_value_defaults(property.spec, &value) != FALSE;
}

std::string TextOf(const SProperty& property, const GValue& value, const Babl* space) {
    if (!property.names.empty()) {
        const auto number = static_cast<std::size_t>(g_value_get_enum(&value));
        return number < property.names.size() ? property.names[number]
                                              : "number " + std::to_string(number);
    }
    if (G_VALUE_HOLDS_STRING(&value)) {
        const char* text = g_value_get_string(&value);
        return text ? text : "";
    }
    if (G_VALUE_HOLDS_BOOLEAN(&value)) return g_value_get_boolean(&value) ? "true" : "false";
    if (G_VALUE_HOLDS_INT(&value)) return std::to_string(g_value_get_int(&value));
    if (G_VALUE_HOLDS_ENUM(&value)) return std::to_string(g_value_get_enum(&value));
    guint8 samples[3] = {};
    if (auto* colour = static_cast<GeglColor*>(g_value_get_object(&value))) {
        gegl_color_get_pixel(colour, babl_format_with_space("R'G'B' u8", space), samples);
    }
    char text[8];
    g_snprintf(text, sizeof text, "#%02X%02X%02X", samples[0], samples[1], samples[2]);
    return text;
}
