"""Fourteen texture effects for pictures in memory.

    import cmdtexture
    stone = cmdtexture.apply(image, "Sandstone", angle=30)
    woven = cmdtexture.weave(image)

Images are arrays of NumPy or images of Pillow. Results are the same bytes as those of the program
`cmdtexture`. Each effect has a function of its own, whose keywords are its parameters.
"""

from ._effects import *
from ._errors import Cancelled as Cancelled
from ._errors import EffectError as EffectError
from ._errors import Error as Error
from ._errors import FaultError as FaultError
from ._errors import LimitError as LimitError
from ._errors import OutputError as OutputError
from ._errors import PictureTypeError as PictureTypeError
from ._errors import UnreadableError as UnreadableError
from ._errors import UsageError as UsageError
from ._library import Library as Library
from ._library import apply as apply
from ._library import apply_recipe as apply_recipe
from ._library import describe as describe
from ._library import effects as effects
from ._library import patterns as patterns
from ._library import presets as presets
from ._library import textures as textures
from ._native import __version__ as __version__
