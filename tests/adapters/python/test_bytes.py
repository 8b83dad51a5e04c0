"""The results are the bytes of the program."""

import json
import random
import re

import cmdtexture
import numpy
import pytest
from conftest import LAYOUTS, WIDTH, noise
from PIL import Image

KINDS = [(layout, depth) for layout in LAYOUTS for depth in (8, 16)]
# Larger values make the same code work longer than pictures as small as these are worth.
LARGEST_SPAN = 99


def random_value(parameter, chance):
    if parameter["type"] == "boolean":
        return chance.random() < 0.5
    if parameter["type"] == "colour":
        return "#%06X" % chance.randrange(2**24)
    if parameter["type"] == "string":
        return parameter["default"]
    if parameter["type"] == "enumeration":
        return chance.choice(parameter["members"])
    low, high = parameter["minimum"], parameter["maximum"]
    return chance.randint(low, min(high, low + LARGEST_SPAN, WIDTH))


def keyword(name):
    return re.sub("(?<=[a-z])([A-Z])", r"_\1", name).lower()


def text(value):
    return str(value).lower() if isinstance(value, bool) else str(value)


@pytest.mark.parametrize("kind", ["default", "random"])
@pytest.mark.parametrize("effect", cmdtexture.effects())
def test_every_effect_in_every_format(effect, kind, program):
    chance = random.Random(f"{effect} {kind}")
    parameters = cmdtexture.describe(effect)["parameters"] if kind == "random" else []
    function = getattr(cmdtexture, keyword(effect))
    mask = noise("grey", seed=8)
    for layout, depth in KINDS:
        values = {row["name"]: random_value(row, chance) for row in parameters}
        options = [f"-p{name}={text(value)}" for name, value in values.items()]
        picture = noise(layout, depth)
        expected = program(picture, effect, "--canvas", "300x200", "--at", "21,13", *options,
                           mask=mask)
        assert (expected != picture).any()
        result = function(picture, mask=mask, canvas=(300, 200), at=(21, 13),
                          **{keyword(name): value for name, value in values.items()})
        numpy.testing.assert_array_equal(result, expected, f"{layout} {depth} {values}")
        assert (result.dtype, result.shape) == (picture.dtype, picture.shape)


@pytest.mark.parametrize("effect", cmdtexture.effects())
def test_presets(effect, program):
    picture = noise("RGB", size=(90, 130))
    for preset in cmdtexture.presets(effect):
        numpy.testing.assert_array_equal(cmdtexture.apply(picture, effect, preset=preset),
                                         program(picture, effect, "--preset", preset), preset)


def test_recipes(tmp_path, program):
    steps = [{"effect": "Weave", "mask": str(tmp_path / "step.png")},
             {"effect": "Fur", "parameters": {"Length": 7}, "blend": "overlay", "opacity": 0.5}]
    Image.fromarray(noise("grey", seed=8)).save(tmp_path / "step.png")
    (tmp_path / "recipe.json").write_text(json.dumps(steps))
    picture, mask = noise("RGBA", 16), noise("grey", seed=9)
    expected = program(picture, None, "--recipe", tmp_path / "recipe.json", "--canvas", "90x80", "--at",
                       "3,4", mask=mask)
    for recipe in (steps, tmp_path / "recipe.json", str(tmp_path / "recipe.json")):
        result = cmdtexture.apply_recipe(picture, recipe, mask=mask, canvas=(90, 80), at=(3, 4))
        numpy.testing.assert_array_equal(result, expected)


def test_values_go_before_those_of_a_preset(program):
    picture = noise()
    numpy.testing.assert_array_equal(
        cmdtexture.fur(picture, preset="long-hair", blur=0, length=11),  # 11 is the default
        program(picture, "Fur", "--preset", "long-hair", "-pBlur=0", "-pLength=11"))
