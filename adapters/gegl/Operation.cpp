#define G_LOG_DOMAIN "GEGL"
#include "adapters/gegl/Operation.h"

#include <new>

namespace {

// An effect as an operation: what its class is made of. Kinds stay as long as the process.
struct SOperationKind {
    TOwned<cmdtexture_effect> defaults;  // copied for every run
    std::string operation;               // "cmdtexture:fine-leather"
    std::string title, description;
    bool is_local = false;
    std::vector<SProperty> properties;  // that of id i + 1 at i
};

// Where the input lies on its document.
struct SCanvas {
    int width = 0, height = 0;  // 0: the picture itself is the document
    int left = 0, top = 0;      // of the origin of the graph's coordinates
};

struct SState {
    std::vector<GValue> values;        // in the order of the kind's properties
    TOwned<cmdtexture_effect> effect;  // with these values; null when they do not fit
    SCanvas canvas;
    std::string complaint;  // what was said last
    std::string tried;      // names of pictures that can be had
};

struct SOperation {
    GeglOperationFilter parent;
    SState* state;
};
struct SOperationClass {
    GeglOperationFilterClass parent;
    const SOperationKind* kind;
};

const SOperationKind& KindOf(gpointer operation) {
    return *G_TYPE_INSTANCE_GET_CLASS(operation, 0, SOperationClass)->kind;
}
SState& StateOf(gpointer operation) { return *static_cast<SOperation*>(operation)->state; }

GeglRectangle InputBounds(GeglOperation* operation) {
    const GeglRectangle* bounds = gegl_operation_source_get_bounding_box(operation, "input");
    return bounds ? *bounds : GeglRectangle{0, 0, 0, 0};
}

// The samples that the effect works on: the input's own when they are of 8 bits or 16, else 16, in
// its space and with its channels.
const Babl* WorkingFormat(const Babl* source) {
    if (!source) return babl_format("R'G'B'A u16");
    const auto flags = static_cast<int>(babl_get_model_flags(source));
    const auto has = [flags](int flag) { return (flags & flag) != 0; };
    const bool is_indexed = babl_format_is_palette(source) != 0;
    const bool is_grey = has(BABL_MODEL_FLAG_GRAY) && !is_indexed;
    const bool is_eight = babl_format_get_type(source, 0) == babl_type("u8") &&
                          (is_indexed || has(BABL_MODEL_FLAG_NONLINEAR)) &&
                          (is_indexed || is_grey || has(BABL_MODEL_FLAG_RGB)) &&
                          !has(BABL_MODEL_FLAG_ASSOCIATED);
    const bool has_alpha = babl_format_has_alpha(source) != 0;
    const char* const names[2][2][2] = {
        {{"R'G'B' u16", "R'G'B' u8"}, {"R'G'B'A u16", "R'G'B'A u8"}},
        {{"Y' u16", "Y' u8"}, {"Y'A u16", "Y'A u8"}}};
    const Babl* space = babl_format_get_space(source);
    if (space && babl_space_is_cmyk(space)) space = nullptr;
    return babl_format_with_space(names[is_grey][has_alpha][is_eight], space);
}

// The document: as the properties say; else, for what lies at its place there, all from the origin
// to the picture's far corner.
SCanvas CanvasOf(const SOperationKind& kind, const SState& state, const GeglRectangle& bounds) {
    if (gegl_rectangle_is_empty(&bounds)) return {};
    const std::size_t count = state.values.size();
    const SCanvas said{g_value_get_int(&state.values[count - 2]),
                       g_value_get_int(&state.values[count - 1])};
    if (said.width > 0 && said.height > 0) return said;
    if (kind.is_local && bounds.x >= 0 && bounds.y >= 0) {
        return {bounds.x + bounds.width, bounds.y + bounds.height};
    }
    return {bounds.width, bounds.height, bounds.x, bounds.y};
}

// Lets an effect that takes a picture of the library run on one pixel: what cannot be found or read
// then is no surprise of the real run, which comes when there is an output already.
cmdtexture_status TryPictures(const SOperationKind& kind, cmdtexture_effect* effect, SState& state,
                              cmdtexture_error** error) {
    std::string names;
    for (const SProperty& property : kind.properties) {
        if (property.names.empty()) continue;
        const TOwned<char> name(cmdtexture_effect_get(effect, property.parameter.c_str(), nullptr));
        names += std::string(name ? name.get() : "") + '\n';
    }
    if (names == state.tried) return CMDTEXTURE_OK;
    guint8 pixel = 0;
    cmdtexture_image image{};
    image.size = sizeof image;
    image.pixels = &pixel;
    image.stride = image.width = image.height = 1;
    image.layout = CMDTEXTURE_GREY;
    image.depth = 8;
    const cmdtexture_status status =
        cmdtexture_effect_apply(effect, &image, &image, nullptr, error);
    state.tried = status == CMDTEXTURE_OK ? names : "";
    return status;
}

// Says in words what is wrong; "" when nothing is.
std::string SetUp(const SOperationKind& kind, SState& state, const GeglRectangle& bounds,
                  const Babl* space) {
    state.effect = nullptr;
    state.canvas = CanvasOf(kind, state, bounds);
    if (gegl_rectangle_is_infinite_plane(&bounds)) {
        return "the input has no edges (gegl:crop gives it some)";
    }
    cmdtexture_error* failed = nullptr;
    cmdtexture_effect* made = nullptr;
    cmdtexture_status status = cmdtexture_effect_copy(kind.defaults.get(), &made, &failed);
    TOwned<cmdtexture_effect> effect(made);
    if (status == CMDTEXTURE_OK) {
        status =
            cmdtexture_effect_set_canvas(made, state.canvas.width, state.canvas.height, &failed);
    }
    for (std::size_t i = 0; i < state.values.size() && status == CMDTEXTURE_OK; ++i) {
        const SProperty& property = kind.properties[i];
        // What is not set stays as the effect has it, which may follow the canvas.
        if (property.parameter.empty() || IsDefault(property, state.values[i])) continue;
        status = cmdtexture_effect_set(made, property.parameter.c_str(),
                                       TextOf(property, state.values[i], space).c_str(), &failed);
    }
    if (status == CMDTEXTURE_OK) status = TryPictures(kind, made, state, &failed);
    const TOwned<cmdtexture_error> error(failed);
    if (status != CMDTEXTURE_OK) return Complaint(failed);
    state.effect = std::move(effect);
    return {};
}

void Say(const SOperationKind& kind, SState& state, const std::string& complaint) {
    if (complaint != state.complaint && !complaint.empty()) {
        g_warning("%s: %s", kind.operation.c_str(), complaint.c_str());
    }
    state.complaint = complaint;
}

void Prepare(GeglOperation* operation) {
    const SOperationKind& kind = KindOf(operation);
    SState& state = StateOf(operation);
    const Babl* format = WorkingFormat(gegl_operation_get_source_format(operation, "input"));
    gegl_operation_set_format(operation, "input", format);
    gegl_operation_set_format(operation, "output", format);
    Say(kind, state, SetUp(kind, state, InputBounds(operation), babl_format_get_space(format)));
}

// Without a result there is no area that could be taken for one.
GeglRectangle BoundingBox(GeglOperation* operation) {
    return StateOf(operation).effect ? InputBounds(operation) : GeglRectangle{0, 0, 0, 0};
}
GeglRectangle WholeForOutput(GeglOperation* operation, const gchar*, const GeglRectangle*) {
    return InputBounds(operation);
}
GeglRectangle WholeAtOnce(GeglOperation* operation, const GeglRectangle*) {
    return InputBounds(operation);
}

int ReportProgress(double fraction, void* operation) {
    gchar none[] = "";
    gegl_operation_progress(static_cast<GeglOperation*>(operation), fraction, none);
    return 0;
}

cmdtexture_layout LayoutOf(const Babl* format) {
    return static_cast<cmdtexture_layout>(babl_format_get_n_components(format));
}

gboolean Process(GeglOperation* operation, GeglBuffer* input, GeglBuffer* output,
                 const GeglRectangle* roi, gint) {
    const SOperationKind& kind = KindOf(operation);
    SState& state = StateOf(operation);
    if (!state.effect) return FALSE;
    const GeglRectangle area = kind.is_local ? *roi : InputBounds(operation);
    if (gegl_rectangle_is_empty(&area)) return TRUE;

    const Babl* format = gegl_operation_get_format(operation, "output");
    const auto row = static_cast<std::size_t>(area.width) *
                     static_cast<std::size_t>(babl_format_get_bytes_per_pixel(format));
    const std::unique_ptr<guint8[]> pixels(new (std::nothrow)
                                               guint8[static_cast<std::size_t>(area.height) * row]);
    if (!pixels) {
        Say(kind, state, "there is not enough memory");
        return FALSE;
    }
    const int stride = static_cast<int>(row);
    gegl_buffer_get(input, &area, 1.0, format, pixels.get(), stride, GEGL_ABYSS_NONE);
    cmdtexture_image image{};
    image.size = sizeof image;
    image.pixels = pixels.get();
    image.stride = stride;
    image.width = area.width;
    image.height = area.height;
    image.layout = LayoutOf(format);
    image.depth = babl_format_get_type(format, 0) == babl_type("u16") ? 16 : 8;
    cmdtexture_run run{};
    run.size = sizeof run;
    run.x = area.x - state.canvas.left;
    run.y = area.y - state.canvas.top;
    run.progress = &ReportProgress;
    run.user = operation;
    cmdtexture_error* failed = nullptr;
    const bool done =
        cmdtexture_effect_apply(state.effect.get(), &image, &image, &run, &failed) == CMDTEXTURE_OK;
    const TOwned<cmdtexture_error> error(failed);
    if (!done) {
        Say(kind, state, Complaint(failed));
        return FALSE;
    }
    gegl_buffer_set(output, &area, 0, format, pixels.get(), stride);
    return TRUE;
}

void GetValue(GObject* operation, guint id, GValue* value, GParamSpec*) {
    g_value_copy(&StateOf(operation).values[id - 1], value);
}
void SetValue(GObject* operation, guint id, const GValue* value, GParamSpec*) {
    g_value_copy(value, &StateOf(operation).values[id - 1]);
}

void MakeInstance(GTypeInstance* instance, gpointer made) {
    auto* operation = reinterpret_cast<SOperation*>(instance);
    operation->state = new SState;
    for (const SProperty& property : static_cast<SOperationClass*>(made)->kind->properties) {
        GValue& value = operation->state->values.emplace_back(GValue{});
        g_value_init(&value, property.spec->value_type);
    }
}
void Finalize(GObject* operation) {
    SState* state = static_cast<SOperation*>(static_cast<gpointer>(operation))->state;
    for (GValue& value : state->values) g_value_unset(&value);
    delete state;
    G_OBJECT_CLASS(g_type_class_peek(GEGL_TYPE_OPERATION_FILTER))->finalize(operation);
}

void MakeClass(gpointer made, gpointer data) {
    const auto* kind = static_cast<const SOperationKind*>(data);
    static_cast<SOperationClass*>(made)->kind = kind;
    auto* object = G_OBJECT_CLASS(made);
    object->get_property = &GetValue;
    object->set_property = &SetValue;
    object->finalize = &Finalize;
    for (std::size_t i = 0; i < kind->properties.size(); ++i) {
        g_object_class_install_property(object, static_cast<guint>(i + 1),
                                        kind->properties[i].spec);
    }
    auto* operation = GEGL_OPERATION_CLASS(made);
    operation->prepare = &Prepare;
    operation->get_bounding_box = &BoundingBox;
    operation->threaded = FALSE;  // an effect uses all cores itself
    operation->opencl_support = FALSE;
    operation->cache_policy = GEGL_CACHE_POLICY_NEVER;
    if (!kind->is_local) {
        operation->get_required_for_output = &WholeForOutput;
        operation->get_invalidated_by_change = &WholeForOutput;
        operation->get_cached_region = &WholeAtOnce;
        operation->cache_policy = GEGL_CACHE_POLICY_ALWAYS;
    }
    GEGL_OPERATION_FILTER_CLASS(made)->process = &Process;
    gegl_operation_class_set_keys(
        operation, "name", kind->operation.c_str(), "title", kind->title.c_str(), "description",
        kind->description.c_str(), "categories", "artistic", "gimp:menu-path",
        "<Image>/Filters/CmdTexture", "gimp:menu-label", kind->title.c_str(), nullptr);
    if (kind->is_local) {
        gegl_operation_class_set_key(operation, "position-dependent", "true");
    }
}

// What a pixel becomes depends on its place and on nothing around it.
bool IsLocal(const std::string& effect) { return effect == "Blinds" || effect == "Weave"; }

}  // namespace

std::string Complaint(const cmdtexture_error* error) {
    const std::string hint = cmdtexture_error_hint(error);
    return cmdtexture_error_message(error) + (hint.empty() ? "" : " (" + hint + ")");
}

void RegisterOperation(const cmdtexture_library& library, const cmdtexture_effect_info& effect) {
    const std::string type_name = std::string("CmdTexture") + effect.name;
    cmdtexture_effect* defaults = nullptr;
    if (g_type_from_name(type_name.c_str()) ||
        cmdtexture_effect_new(&library, effect.name, &defaults, nullptr) != CMDTEXTURE_OK) {
        return;
    }
    const auto* kind = new SOperationKind{.defaults = TOwned<cmdtexture_effect>(defaults),
                                          .operation = "cmdtexture:" + KebabCase(effect.name),
                                          .title = effect.display_name,
                                          .description = effect.description,
                                          .is_local = IsLocal(effect.name),
                                          .properties = MakeProperties(library, *defaults)};
    GTypeInfo info{};
    info.class_size = sizeof(SOperationClass);
    info.class_init = &MakeClass;
    info.class_data = kind;
    info.instance_size = sizeof(SOperation);
    info.instance_init = &MakeInstance;
    g_type_register_static(GEGL_TYPE_OPERATION_FILTER, type_name.c_str(), &info,
                           static_cast<GTypeFlags>(0));
}
