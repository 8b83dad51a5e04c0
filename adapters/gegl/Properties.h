#pragma once

#include <gegl-plugin.h>

#include <string>
#include <vector>

#include "adapters/gegl/Owned.h"

// A property of an operation, and the parameter of the effect that it sets.
struct SProperty {
    GParamSpec* spec = nullptr;           // the operation's class has a reference, too
    std::string parameter;                // "" for those of the canvas
    std::vector<std::string> names = {};  // of a list of pictures: what each number stands for
};

// "FineLeather" as "fine-leather".
std::string KebabCase(const std::string& name);

// The properties of an effect, in the order of its parameters: integers as sliders with their
// ranges, members of enumerations and pictures of the library as enumerations, and colours. A
// parameter that names a picture has two: a list of what is installed, which dialogs show, and its
// name, which counts unless it is empty. Values out of range are kept as they are, for the effect
// to refuse; GObject would quietly take the default instead.
std::vector<SProperty> MakeProperties(const cmdtexture_library& library,
                                      const cmdtexture_effect& effect);

// Whether the value is what the property starts with.
bool IsDefault(const SProperty& property, const GValue& value);
// The value as the text that sets the parameter; colours as samples of the space.
std::string TextOf(const SProperty& property, const GValue& value, const Babl* space);
