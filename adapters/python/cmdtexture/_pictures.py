"""Pictures as callers have them, and as arrays that the effects work on."""

from __future__ import annotations

import sys
from typing import Any

import numpy

from ._errors import PictureTypeError, UsageError

_LAYOUTS = "rows x columns, or rows x columns x 1 to 4 samples (grey, grey-alpha, RGB, RGBA)"
_PIL_MODES = ("L", "LA", "RGB", "RGBA", "I;16")
# What the modes that are not worked on become, and lose nothing or little.
_PIL_NEAREST = {"1": "L", "P": "RGBA", "PA": "RGBA", "RGBX": "RGB", "RGBa": "RGBA", "La": "LA",
                "CMYK": "RGB", "YCbCr": "RGB", "HSV": "RGB", "LAB": "RGB"}
_CONVERSIONS = {
    "f": "from 0 to 1: (image.clip(0, 1) * 255 + 0.5).astype(numpy.uint8), or 65535 and "
         "numpy.uint16 for 16 bits",
    "b": "image.astype(numpy.uint8) * 255",
    "i": "image.clip(0, 255).astype(numpy.uint8), or 65535 and numpy.uint16 for 16 bits",
    "u": "image.clip(0, 65535).astype(numpy.uint16)",
}


def is_pil(image: object) -> bool:
    """Whether it is an image of Pillow, which is not imported for the question."""
    module = sys.modules.get("PIL.Image")
    return module is not None and isinstance(image, module.Image)


def pixels_of(image: Any, role: str = "image") -> numpy.ndarray[Any, Any]:
    """The array behind a picture: itself, or the pixels of an image of Pillow."""
    if is_pil(image):
        if image.mode not in _PIL_MODES:
            nearest = _PIL_NEAREST.get(image.mode)
            raise PictureTypeError(
                f"the {role} is of the mode {image.mode}; {', '.join(_PIL_MODES)} can be",
                f'image.convert("{nearest}")' if nearest else "")
        return numpy.asarray(image)
    if not isinstance(image, numpy.ndarray) and not hasattr(image, "__array_interface__"):
        raise PictureTypeError(f"the {role} is of the type {type(image).__name__}",
                               "a NumPy array or an image of Pillow is expected")
    array = numpy.asarray(image)
    if array.dtype.kind != "u" or array.dtype.itemsize > 2:
        raise PictureTypeError(f"the {role} has samples of {array.dtype}; uint8 and uint16 can be",
                               _CONVERSIONS.get(array.dtype.kind, ""))
    if array.ndim not in (2, 3) or array.ndim == 3 and not 1 <= array.shape[2] <= 4:
        shape = " x ".join(map(str, array.shape))
        raise UsageError(f"the {role} has the shape {shape}", f"{_LAYOUTS} can be")
    if array.size == 0:
        raise UsageError(f"the {role} has no pixels")
    return array.astype(array.dtype.newbyteorder("="), copy=False)


def selection_of(mask: Any, shape: tuple[int, ...]) -> numpy.ndarray[Any, Any]:
    """A mask as the array of a selection: uint8, 255 where the effect is to work in full."""
    if is_pil(mask) and mask.mode == "1":
        mask = mask.convert("L")
    array = numpy.asarray(mask)
    if array.ndim == 3 and array.shape[2] == 1:
        array = array[:, :, 0]
    if array.dtype == numpy.bool_:
        array = array.astype(numpy.uint8) * numpy.uint8(255)
    if array.dtype != numpy.uint8 or array.ndim != 2:
        raise PictureTypeError(f"the mask has {array.ndim} dimensions of {array.dtype}",
                               "rows x columns of uint8 (255 selects) or bool are expected")
    if array.shape != shape[:2]:
        raise UsageError("the mask has {1} x {0} pixels, the image {3} x {2}"
                         .format(*array.shape, *shape))
    return array


def destination_of(out: Any, source: numpy.ndarray[Any, Any]) -> numpy.ndarray[Any, Any]:
    """The array that the caller wants to have written."""
    if not isinstance(out, numpy.ndarray):
        raise PictureTypeError(f"out is of the type {type(out).__name__}",
                               "an array of the image's shape and type is expected")
    if out.shape != source.shape or out.dtype != source.dtype:
        raise UsageError(f"out is {out.shape} of {out.dtype}, the image {source.shape} of "
                         f"{source.dtype}", "numpy.empty_like(image) fits")
    if not out.flags.writeable:
        raise UsageError("out is read-only")
    return out


def like(array: numpy.ndarray[Any, Any], image: Any) -> Any:
    """An image of Pillow with the pixels of an array, and with the rest of another image."""
    height, width = array.shape[:2]
    result = sys.modules["PIL.Image"].frombytes(image.mode, (width, height), array.tobytes())
    result.info = dict(image.info)
    return result
