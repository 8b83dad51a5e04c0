"""The effects of an installation, and how they are applied."""

from __future__ import annotations

import collections.abc
import json
import operator
import os
import threading
from typing import TYPE_CHECKING, Any, Callable, Tuple, TypeVar, Union, cast

import numpy
from numpy.typing import NDArray

from . import _native
from ._errors import UsageError
from ._pictures import destination_of, is_pil, like, pixels_of, selection_of

if TYPE_CHECKING:
    import PIL.Image

Picture = TypeVar("Picture", NDArray[numpy.uint8], NDArray[numpy.uint16], "PIL.Image.Image")
Colour = Union[str, Tuple[int, int, int]]
Value = Union[int, str, Colour]
Preset = Union[str, "os.PathLike[str]"]
Recipe = Union[str, "os.PathLike[str]", "collections.abc.Iterable[collections.abc.Mapping[str, Any]]"]
Progress = Callable[[float], object]


class Library:
    """The effects of an installation, with texts in a language.

    language  : a code such as "DE"; the environment's without one
    resources : folders of patterns and textures that are looked through first
    prefix    : of the installation; the one that this module belongs to without one

    Threads may share a library, and libraries work side by side.
    """

    def __init__(
        self,
        *,
        language: str | None = None,
        resources: collections.abc.Iterable[str | os.PathLike[str]] = (),
        prefix: str | os.PathLike[str] | None = None,
    ) -> None:
        self._native = _native.Library(
            None if prefix is None else os.fspath(prefix),
            language,
            [os.fspath(folder) for folder in resources],
        )

    @property
    def language(self) -> str:
        """The code of the language that texts are in."""
        return self._native.language

    def effects(self) -> list[str]:
        """The names of the effects."""
        return [effect["name"] for effect in json.loads(self._native.list_effects())]

    def describe(self, effect: str) -> dict[str, Any]:
        """What an effect is: its names, its description and its parameters with their ranges."""
        description: dict[str, Any] = json.loads(self._native.describe(_name(effect)))
        return description

    def presets(self, effect: str) -> list[str]:
        """The presets of an effect, those that ship and those that the user saved."""
        return self._native.presets(_name(effect))

    def patterns(self) -> list[str]:
        """The names that `pattern_name` of Sculpture takes."""
        return self._native.patterns()

    def textures(self) -> list[str]:
        """The names that `texture_name` of Texture takes."""
        return self._native.textures()

    def apply(
        self,
        image: Picture,
        effect: str,
        *,
        preset: Preset | None = None,
        out: NDArray[Any] | None = None,
        mask: Any = None,
        canvas: tuple[int, int] | None = None,
        at: tuple[int, int] = (0, 0),
        progress: Progress | None = None,
        **values: Value,
    ) -> Picture:
        """Applies an effect to a picture; see `cmdtexture.apply`."""
        what = (
            _name(effect),
            None if preset is None else os.fspath(preset),
            json.dumps({_name(name): _plain(name, value) for name, value in values.items()}),
        )
        return _run(self._native.run, what, image, out, mask, canvas, at, progress)

    def apply_recipe(
        self,
        image: Picture,
        recipe: Recipe,
        *,
        out: NDArray[Any] | None = None,
        mask: Any = None,
        canvas: tuple[int, int] | None = None,
        at: tuple[int, int] = (0, 0),
        progress: Progress | None = None,
    ) -> Picture:
        """Applies the steps of a recipe to a picture; see `cmdtexture.apply_recipe`."""
        what: tuple[str, bool]
        if isinstance(recipe, (str, os.PathLike)):
            what = (os.fspath(recipe), True)
        else:
            try:
                what = (json.dumps(list(recipe)), False)
            except TypeError as error:
                raise UsageError(f"the recipe is no list of steps: {error}") from None
        return _run(self._native.run_recipe, what, image, out, mask, canvas, at, progress)


def _run(
    native: Callable[..., None],
    what: tuple[Any, ...],
    image: Picture,
    out: NDArray[Any] | None,
    mask: Any,
    canvas: tuple[int, int] | None,
    at: tuple[int, int],
    progress: Progress | None,
) -> Picture:
    source = pixels_of(image)
    if out is not None:
        destination = destination_of(out, source)
    else:
        destination = numpy.empty_like(source, order="C", subok=False)
    native(
        *what,
        source,
        destination,
        None if canvas is None else _pair(canvas, "canvas"),
        _pair(at, "at"),
        None if mask is None else selection_of(mask, source.shape),
        progress,
    )
    result: Any = destination
    if out is None and is_pil(image):
        result = like(destination, image)
    return cast(Picture, result)


def _name(text: str) -> str:
    """A name as the C interface has it, which minds no letter case but knows no underscores."""
    return text.replace("_", "")


def _pair(pair: collections.abc.Sequence[int], role: str) -> tuple[int, int]:
    try:
        first, second = map(operator.index, pair)
        if max(abs(first), abs(second)) < 2**31:
            return first, second
    except (TypeError, ValueError):
        pass
    raise UsageError(f"{role} is {pair!r}", "two whole numbers of pixels are expected")


def _plain(name: str, value: Any) -> bool | int | float | str:
    """A value as JSON knows it."""
    if isinstance(value, (bool, float, str)):
        return value
    if isinstance(value, (tuple, list)) and len(value) == 3:
        try:
            samples = bytes(map(operator.index, value))
        except (TypeError, ValueError):
            raise UsageError(f"{name} is {value!r}", "colours are three numbers from 0 to 255, or "
                             "a text as #RRGGBB") from None
        return "#" + samples.hex().upper()
    if isinstance(value, numpy.generic):
        return _plain(name, value.item())
    try:
        return operator.index(value)
    except TypeError:
        raise UsageError(f"{name} is {value!r}", "numbers, True and False, texts and colours "
                         "can be") from None


_lock = threading.Lock()
_default: list[Library] = []


def default_library() -> Library:
    """The library that the functions of the module share, opened when one is first called."""
    with _lock:
        if not _default:
            _default.append(Library())
        return _default[0]


def apply(
    image: Picture,
    effect: str,
    *,
    preset: Preset | None = None,
    out: NDArray[Any] | None = None,
    mask: Any = None,
    canvas: tuple[int, int] | None = None,
    at: tuple[int, int] = (0, 0),
    progress: Progress | None = None,
    **values: Value,
) -> Picture:
    """Applies an effect to a picture, and returns the result: cmdtexture.apply(image, "Sandstone", angle=30).

    image    : an array of rows x columns (grey) or rows x columns x 1 to 4 samples (grey,
               grey-alpha, RGB, RGBA), uint8 or uint16, with any strides; or an image of Pillow of
               the mode L, LA, RGB, RGBA or I;16
    effect   : a name that effects() lists, in any letter case
    preset   : the name of a preset, or its file; values given besides go before its own
    out      : an array of the image's shape and type to write the result to and to return; it may
               be the image itself. When the call fails, it is as it was
    mask     : where the effect works: rows x columns of uint8 (255 in full, 0 not at all) or bool,
               or an image of Pillow of the mode L or 1
    canvas   : width and height of the document that the image is a part of; default: its own size
    at       : x and y of the image on the canvas
    progress : a function that is told the fraction that is done, on the calling thread; a true
               answer cancels
    values   : the effect's parameters by name, such as `tile_size=24`. Colours are texts as
               "#RRGGBB" or three numbers; members of an enumeration are texts or numbers

    Returns a new array, `out`, or an image of the same mode. Other threads run meanwhile, and
    Ctrl-C ends a run. Raises Error or one of its kinds.
    """
    return default_library().apply(
        image,
        effect,
        preset=preset,
        out=out,
        mask=mask,
        canvas=canvas,
        at=at,
        progress=progress,
        **values,
    )


def apply_recipe(
    image: Picture,
    recipe: Recipe,
    *,
    out: NDArray[Any] | None = None,
    mask: Any = None,
    canvas: tuple[int, int] | None = None,
    at: tuple[int, int] = (0, 0),
    progress: Progress | None = None,
) -> Picture:
    """Applies effects one after another to a picture.

    recipe : the file of a recipe; or its steps, each a mapping with `effect` and, if wanted,
             `preset`, `parameters`, `mask`, `opacity` and `blend`
    mask   : limits the steps that have no mask of their own

    All else is as `apply` has it. The whole recipe is checked before the first step.
    """
    return default_library().apply_recipe(
        image,
        recipe,
        out=out,
        mask=mask,
        canvas=canvas,
        at=at,
        progress=progress,
    )


def effects() -> list[str]:
    """The names of the effects."""
    return default_library().effects()


def describe(effect: str) -> dict[str, Any]:
    """What an effect is: its names, its description and its parameters with their ranges."""
    return default_library().describe(effect)


def presets(effect: str) -> list[str]:
    """The presets of an effect, those that ship and those that the user saved."""
    return default_library().presets(effect)


def patterns() -> list[str]:
    """The names that `pattern_name` of Sculpture takes."""
    return default_library().patterns()


def textures() -> list[str]:
    """The names that `texture_name` of Texture takes."""
    return default_library().textures()
