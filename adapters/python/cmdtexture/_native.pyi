from typing import Any, Callable

import numpy

__version__: str

class Library:
    def __init__(
        self, prefix: str | None, language: str | None, resources: list[str]
    ) -> None: ...
    @property
    def language(self) -> str: ...
    def list_effects(self) -> str: ...
    def describe(self, effect: str) -> str: ...
    def presets(self, effect: str) -> list[str]: ...
    def patterns(self) -> list[str]: ...
    def textures(self) -> list[str]: ...
    def run(
        self,
        effect: str,
        preset: str | None,
        values: str,
        source: numpy.ndarray[Any, Any],
        destination: numpy.ndarray[Any, Any],
        canvas: tuple[int, int] | None,
        at: tuple[int, int],
        mask: numpy.ndarray[Any, Any] | None,
        progress: Callable[[float], object] | None,
    ) -> None: ...
    def run_recipe(
        self,
        recipe: str,
        is_file: bool,
        source: numpy.ndarray[Any, Any],
        destination: numpy.ndarray[Any, Any],
        canvas: tuple[int, int] | None,
        at: tuple[int, int],
        mask: numpy.ndarray[Any, Any] | None,
        progress: Callable[[float], object] | None,
    ) -> None: ...
