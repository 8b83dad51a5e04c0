"""Why a call failed, one class for each kind."""

from __future__ import annotations


class Error(Exception):
    """Base of all errors of this module.

    message : what is wrong, one line
    hint    : what would be right; "" when there is nothing to say
    status  : the exit status that the program `cmdtexture` has for errors of the kind
    """

    status = 1

    def __init__(self, message: str = "", hint: str = "") -> None:
        super().__init__(message)
        self.message = message
        self.hint = hint
        if hint:
            self.add_note(f"hint: {hint}")


class FaultError(Error, RuntimeError):
    """A fault of the library itself."""


class UsageError(Error, ValueError):
    """An unknown name, or a value or a picture that does not fit."""

    status = 2


class PictureTypeError(UsageError, TypeError):
    """A picture of a kind that the effects do not know, such as an array of floats."""


class UnreadableError(Error, OSError):
    """A pattern or texture whose file cannot be read."""

    status = 3


class OutputError(Error, OSError):
    """A file that cannot be written, such as scratch space on a full disk."""

    status = 5


class LimitError(Error, MemoryError):
    """There is not enough memory."""

    status = 6


class EffectError(Error, RuntimeError):
    """The effect reported an error, or could not be loaded."""

    status = 7


class Cancelled(Error):
    """The progress function asked to stop."""

    status = 130


_CLASSES = {
    kind.status: kind
    for kind in (UsageError, UnreadableError, OutputError, LimitError, EffectError, Cancelled)
}


def error_of(status: int, message: str, hint: str) -> Error:
    """The exception for a status of the C interface."""
    return _CLASSES.get(status, FaultError)(message, hint)
