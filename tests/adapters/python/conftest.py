import os
import subprocess

import numpy
import pytest
import tifffile

LAYOUTS = {"grey": (), "grey-alpha": (2,), "RGB": (3,), "RGBA": (4,)}
HEIGHT, WIDTH = 26, 40


def noise(layout="RGB", depth=8, seed=7, size=(HEIGHT, WIDTH)):
    """A picture of noise whose shape and type are those of a layout and a depth."""
    random = numpy.random.default_rng(seed)
    return random.integers(0, 2**depth, size + LAYOUTS[layout], dtype=f"uint{depth}")


@pytest.fixture(autouse=True)
def home(tmp_path, monkeypatch):
    """Nothing of the user's own counts."""
    for name in ("CONFIG", "DATA", "CACHE"):
        monkeypatch.setenv(f"XDG_{name}_HOME", str(tmp_path / name))


@pytest.fixture
def program(tmp_path):
    """What the program makes of a picture, which other software writes and reads."""

    def run(picture, effect, *arguments, mask=None):
        source, result = tmp_path / "in.tif", tmp_path / "out.tif"
        colours = picture.shape[2] if picture.ndim == 3 else 1
        tifffile.imwrite(source, picture, photometric="rgb" if colours > 2 else "minisblack",
                         planarconfig="contig" if colours > 1 else None,
                         extrasamples=["unassalpha"] if colours in (2, 4) else None)
        command = [os.environ["CMDTEXTURE_PROGRAM"], "apply", *([effect] if effect else []), source,
                   "-o", result, "--overwrite", "--quiet", *arguments]
        if mask is not None:
            tifffile.imwrite(tmp_path / "mask.tif", mask, photometric="minisblack")
            command += ["--mask", tmp_path / "mask.tif"]
        subprocess.run(command, check=True)
        return tifffile.imread(result)

    return run
