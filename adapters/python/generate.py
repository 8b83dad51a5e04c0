"""generate.py PACKAGE: writes the functions of the effects and their stubs into the package, from the
tables that the effects themselves are made of."""

import json
import pathlib
import re
import sys
import textwrap

package = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(package))
import _native  # noqa: E402  not of the package, whose other half is about to be made

HEAD = '''\
# Made by generate.py from the tables of the effects.
from __future__ import annotations

import os
from typing import Any, Callable, Literal, Tuple, Union

from numpy.typing import NDArray

'''
# What every function takes besides the effect's own parameters.
COMMON = [
    ("preset", 'Union[str, "os.PathLike[str]", None]', "None",
     "name of a preset, or its file; values given besides go before its own"),
    ("out", "Union[NDArray[Any], None]", "None",
     "array of the image's shape and type to write to; may be the image"),
    ("mask", "Any", "None", "where the effect works: uint8 (255 in full) or bool, rows x columns"),
    ("canvas", "Union[Tuple[int, int], None]", "None",
     "width and height of the document that the image is a part of"),
    ("at", "Tuple[int, int]", "(0, 0)", "x and y of the image on the canvas"),
    ("progress", "Union[Callable[[float], object], None]", "None",
     "told the fraction that is done; a true answer cancels"),
]
PRESETS_SHOWN = 6


def snake(name):
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])", "_", name).lower()


def type_of(parameter):
    members = ", ".join(json.dumps(member) for member in parameter.get("members", []))
    return {"integer": "int", "boolean": "bool", "string": "str",
            "colour": "Union[str, Tuple[int, int, int]]",
            "enumeration": f"Union[int, Literal[{members}]]"}[parameter["type"]]


def default_of(parameter):
    default = parameter["default"]
    if parameter["type"] == "enumeration":
        default = parameter["members"][default - parameter["minimum"]]
    return f'"{default}"' if isinstance(default, str) else repr(default)


def range_of(parameter):
    if parameter["type"] == "integer":
        return f"{parameter['minimum']} to {parameter['maximum']}"
    if parameter["type"] == "enumeration":
        return ", ".join(parameter["members"])
    return {"boolean": "True or False", "colour": "#RRGGBB or three numbers",
            "string": "a name"}[parameter["type"]]


def docstring(effect, presets):
    lines = textwrap.wrap(effect["description"], 92)
    lines += ["", "image : array or image of Pillow, as apply() takes it"]
    for parameter in effect["parameters"]:
        lines.append(f"{snake(parameter['name'])} : {range_of(parameter)}")
        lines += textwrap.wrap(parameter["description"], 92, initial_indent="    ",
                               subsequent_indent="    ")
    lines += [f"{name} : {text}" for name, _, _, text in COMMON]
    if presets:
        shown = ", ".join(presets[:PRESETS_SHOWN]) + (", ..." if presets[PRESETS_SHOWN:] else "")
        lines += ["", f"Presets: {shown}"]
    return '    """' + "\n".join(f"    {line}".rstrip() for line in lines).strip() + '\n    """'


def signature(effect):
    lines = [f"def {snake(effect['name'])}(", "    image: Picture,", "    *,"]
    for parameter in effect["parameters"]:
        lines.append(f"    {snake(parameter['name'])}: {type_of(parameter)} = {default_of(parameter)},")
    lines += [f"    {name}: {kind} = {default}," for name, kind, default, _ in COMMON]
    return "\n".join(lines + [") -> Picture:"])


library = _native.Library(None, "EN", [])
names = [effect["name"] for effect in json.loads(library.list_effects())]
all_names = "__all__ = [" + "".join(f'\n    "{snake(name)}",' for name in names) + "\n]\n"
code = HEAD + "from ._functions import effect_function\nfrom ._library import Picture\n\n" + all_names
stub = HEAD + "from ._library import Picture\n\n" + all_names
for name in names:
    effect = json.loads(library.describe(name))
    taken = {snake(parameter["name"]) for parameter in effect["parameters"]}
    clash = taken & {"image", "effect", *(row[0] for row in COMMON)}
    assert not clash, f"{name}: {clash} would hide keywords of every function"
    declared = signature(effect)
    code += f'\n\n@effect_function("{name}")\n{declared}\n{docstring(effect, library.presets(name))}\n'
    stub += f"\n{declared} ...\n"
for file, text in (("_effects.py", code), ("_effects.pyi", stub)):
    (package / file).write_text(text, encoding="utf-8")
