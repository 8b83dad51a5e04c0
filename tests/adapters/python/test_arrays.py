"""Arrays of any strides, images of Pillow, masks and destinations."""

import cmdtexture
import numpy
import pytest
from conftest import LAYOUTS, noise
from numpy.lib.stride_tricks import as_strided
from PIL import Image


def odd_addresses(picture):
    memory = numpy.zeros(picture.nbytes + 1, numpy.uint8)[1:]
    copy = memory.view(picture.dtype).reshape(picture.shape)
    copy[...] = picture
    return copy


def spaced(picture):
    memory = numpy.zeros((picture.shape[0] * 2, picture.shape[1] * 3) + picture.shape[2:],
                         picture.dtype)
    memory[1::2, 2::3] = picture
    return memory[1::2, 2::3]


# Other memory with the same picture.
FORMS = {
    "packed": numpy.array,
    "upside down in memory": lambda a: a[::-1].copy()[::-1],
    "mirrored in memory": lambda a: a[:, ::-1].copy()[:, ::-1],
    "samples reversed": lambda a: a[..., ::-1].copy()[..., ::-1],
    "by columns": numpy.asfortranarray,
    "planes": lambda a: numpy.moveaxis(numpy.moveaxis(a, -1, 0).copy(), 0, -1),
    "part of a larger one": lambda a: numpy.pad(a, [(2, 3), (5, 1)] + [(0, 0)] * (a.ndim - 2))[2:-3, 5:-1],
    "spaced": spaced,
    "odd addresses": odd_addresses,
}


@pytest.mark.parametrize("depth", [8, 16])
@pytest.mark.parametrize("layout", LAYOUTS)
@pytest.mark.parametrize("form", FORMS)
def test_strides(form, layout, depth):
    picture = noise(layout, depth)
    expected = cmdtexture.sandstone(picture)
    same = FORMS[form](picture)
    numpy.testing.assert_array_equal(cmdtexture.sandstone(same), expected)
    numpy.testing.assert_array_equal(same, picture, "the source stays")

    out = FORMS[form](numpy.zeros_like(picture))
    around = out.base.copy() if form == "spaced" else None
    assert cmdtexture.sandstone(picture, out=out) is out
    numpy.testing.assert_array_equal(out, expected)
    if around is not None:
        around[1::2, 2::3] = expected
        numpy.testing.assert_array_equal(out.base, around, "nothing beside it is written")
    assert cmdtexture.sandstone(same, out=same) is same
    numpy.testing.assert_array_equal(same, expected, "in place")


def test_rows_that_are_one_row_in_memory():
    row = noise()[:1]
    repeated = numpy.broadcast_to(row, (9,) + row.shape[1:])
    numpy.testing.assert_array_equal(cmdtexture.tiles(repeated), cmdtexture.tiles(repeated.copy()))
    windows = as_strided(row[0], (5, 20, 3), (3, 3, 1))
    numpy.testing.assert_array_equal(cmdtexture.tiles(windows), cmdtexture.tiles(windows.copy()))


@pytest.mark.parametrize("shape", [(1, 1), (1, 9), (9, 1), (1, 9, 3), (9, 1, 4), (5, 4, 1)])
def test_thin_pictures_and_the_other_order_of_bytes(shape):
    picture = numpy.arange(numpy.prod(shape), dtype=numpy.uint16).reshape(shape) * 999
    result = cmdtexture.sandstone(picture)
    assert result.shape == shape
    numpy.testing.assert_array_equal(cmdtexture.sandstone(picture.astype(">u2")), result)


@pytest.mark.parametrize("mode", ["L", "LA", "RGB", "RGBA", "I;16"])
def test_pillow(mode):
    depth = 16 if mode == "I;16" else 8
    picture = noise({"L": "grey", "LA": "grey-alpha", "I;16": "grey"}.get(mode, mode), depth)
    image = Image.frombytes(mode, (picture.shape[1], picture.shape[0]), picture.tobytes())
    image.info["dpi"] = (300, 300)
    selection = noise("grey", seed=3) > 100
    result = cmdtexture.fur(image, mask=Image.fromarray(selection))
    assert (result.mode, result.size, result.info) == (mode, image.size, image.info)
    expected = cmdtexture.fur(picture, mask=selection)
    assert result.tobytes() == expected.tobytes()
    assert image.tobytes() == picture.tobytes() != expected.tobytes()


def test_masks_of_any_strides_and_kinds():
    picture, mask = noise(), noise("grey", seed=3)
    expected = cmdtexture.tiles(picture, mask=mask)
    for other in (mask[::-1].copy()[::-1], numpy.asfortranarray(mask), mask[:, :, None],
                  Image.fromarray(mask)):
        numpy.testing.assert_array_equal(cmdtexture.tiles(picture, mask=other), expected)
    nothing = cmdtexture.tiles(picture, mask=numpy.zeros(mask.shape, bool))
    numpy.testing.assert_array_equal(nothing, picture)
    full = cmdtexture.tiles(picture, mask=numpy.broadcast_to(numpy.uint8(255), mask.shape))
    numpy.testing.assert_array_equal(full, cmdtexture.tiles(picture))
