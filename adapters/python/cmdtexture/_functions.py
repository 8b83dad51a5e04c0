"""What makes a function of an effect out of its signature."""

from __future__ import annotations

import functools
import inspect
from typing import Any, Callable, TypeVar

from ._library import apply

Function = TypeVar("Function", bound=Callable[..., Any])


def effect_function(effect: str) -> Callable[[Function], Function]:
    """Makes a declaration a function that applies the effect.

    The declaration's defaults are those of the effect, for people to read: only what the caller
    gives is set, so that it can be told from what a preset sets.
    """

    def decorate(declaration: Function) -> Function:
        signature = inspect.signature(declaration)

        @functools.wraps(declaration)
        def function(*args: Any, **kwargs: Any) -> Any:
            try:
                signature.bind(*args, **kwargs)
            except TypeError as error:
                raise TypeError(f"{declaration.__name__}(): {error}") from None
            given = dict(kwargs)
            image = args[0] if args else given.pop("image")
            return apply(image, effect, **given)

        return function  # type: ignore[return-value]

    return decorate
