"""Values, errors, progress, Ctrl-C and threads."""

import concurrent.futures
import inspect
import multiprocessing
import pickle
import signal
import subprocess
import sys
import threading
import time

import cmdtexture
import numpy
import pytest
from cmdtexture import Cancelled, PictureTypeError, UsageError
from conftest import noise
from PIL import Image

PICTURE = noise()


@pytest.mark.parametrize("call, kind, message, hint", [
    (lambda **k: cmdtexture.apply(PICTURE, "Sandston", **k), UsageError, "Sandston", "Sandstone"),
    (lambda **k: cmdtexture.apply(PICTURE, "Tiles", angel=1, **k), UsageError, "angel", "Angle"),
    (lambda **k: cmdtexture.tiles(PICTURE, angel=1, **k), TypeError, "tiles.*angel", ""),
    (lambda **k: cmdtexture.tiles(**k), TypeError, "image", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, angle=360, **k), UsageError, "360.*0 to 359", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, angle=1.5, **k), UsageError, "1.5.*whole", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, angle=float("nan"), **k), UsageError, "", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, angle=[1], **k), UsageError, "angle", "numbers"),
    (lambda **k: cmdtexture.tiles(PICTURE, color=(1, 2, 256), **k), UsageError, "color", "0 to 255"),
    (lambda **k: cmdtexture.tiles(PICTURE, tile_shape="round", **k), UsageError, "round", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, preset="no-such", **k), UsageError, "no-such", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, canvas=(5, 0), **k), UsageError, "canvas", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, at=5, **k), UsageError, "at is 5", "two"),
    (lambda **k: cmdtexture.sculpture(PICTURE, pattern_name="granit", **k), UsageError, "granit", ""),
    (lambda **k: cmdtexture.blinds(PICTURE, width=41, **k), UsageError, "41.*2 to 40", ""),
    (lambda **k: cmdtexture.apply_recipe(PICTURE, [{"effect": "Fir"}], **k), UsageError, "step 1", "Fur"),
    (lambda **k: cmdtexture.apply_recipe(PICTURE, "none.json", **k), UsageError, "none.json", ""),
    (lambda **k: cmdtexture.apply_recipe(PICTURE, [{1j}], **k), UsageError, "list of steps", ""),
    (lambda **k: cmdtexture.tiles(PICTURE / 255, **k), PictureTypeError, "float64", "astype"),
    (lambda **k: cmdtexture.tiles(PICTURE > 9, **k), PictureTypeError, "bool", "255"),
    (lambda **k: cmdtexture.tiles(PICTURE.astype(int), **k), PictureTypeError, "int64", "clip"),
    (lambda **k: cmdtexture.tiles(PICTURE[0, 0], **k), UsageError, "shape 3", "columns"),
    (lambda **k: cmdtexture.tiles(PICTURE[:0], **k), UsageError, "no pixels", ""),
    (lambda **k: cmdtexture.tiles("photo.png", **k), PictureTypeError, "str", "NumPy"),
    (lambda **k: cmdtexture.tiles(Image.new("CMYK", (4, 4)), **k), PictureTypeError, "CMYK", "convert"),
    (lambda **k: cmdtexture.tiles(PICTURE, mask=PICTURE, **k), PictureTypeError, "mask", "bool"),
    (lambda **k: cmdtexture.tiles(PICTURE, mask=PICTURE[:4, :, 0], **k), UsageError, "40 x 4", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, progress=lambda done: done > 0.5, **k), Cancelled, "", ""),
    (lambda **k: cmdtexture.tiles(PICTURE, progress=lambda done: 1 / 0, **k), ZeroDivisionError, "", ""),
])
def test_a_failed_call_says_why_and_writes_nothing(call, kind, message, hint):
    out = numpy.full_like(PICTURE, 77)
    with pytest.raises(kind, match=message) as caught:
        call(out=out)
    assert caught.type is kind
    assert hint in getattr(caught.value, "hint", "")
    assert (out == 77).all()


@pytest.mark.parametrize("out, message", [
    (PICTURE[:4].copy(), "shape|out is"), (PICTURE.astype(numpy.uint16), "uint16"),
    (numpy.broadcast_to(PICTURE, PICTURE.shape), "read-only"), (Image.new("RGB", (40, 26)), "type"),
])
def test_a_destination_that_does_not_fit(out, message):
    with pytest.raises(UsageError, match=message):
        cmdtexture.tiles(PICTURE, out=out)


def test_errors_are_what_callers_catch():
    kinds = {2: ValueError, 3: OSError, 5: OSError, 6: MemoryError, 7: RuntimeError}
    for status, builtin in kinds.items():
        error = cmdtexture._errors.error_of(status, "what", "advice")
        assert isinstance(error, builtin) and isinstance(error, cmdtexture.Error)
        again = pickle.loads(pickle.dumps(error))
        assert (type(again), str(again), again.hint, again.status) == (type(error), "what", "advice", status)
        assert again.__notes__ == ["hint: advice"]
    assert issubclass(PictureTypeError, TypeError) and Cancelled.status == 130


def test_functions_are_the_tables():
    for effect in cmdtexture.effects():
        rows = cmdtexture.describe(effect)["parameters"]
        function = next(f for name, f in vars(cmdtexture).items()
                        if name.replace("_", "") == effect.lower())
        declared = list(inspect.signature(function).parameters.values())[1:1 + len(rows)]
        for row, parameter in zip(rows, declared):
            assert parameter.name.replace("_", "") == row["name"].lower()
            members = row.get("members")
            assert parameter.default == (members[row["default"]] if members else row["default"])
            assert row["description"].split()[-1] in function.__doc__


def test_spellings_of_values():
    expected = cmdtexture.apply(PICTURE, "Tiles", tile_shape="squares", color="#102030", angle=7)
    for other in (
        cmdtexture.tiles(PICTURE, tile_shape=1, color=(16, 32, 48), angle=numpy.int16(7)),
        cmdtexture.apply(PICTURE, "tiles", TileShape=numpy.uint8(1), Color=[16, 32, 48], Angle=7),
        cmdtexture.Library(language="DE").apply(PICTURE, "TILES", tile_shape="squares",
                                                color="#102030", angle=7),
    ):
        numpy.testing.assert_array_equal(other, expected)


def test_languages_and_resources(tmp_path):
    assert cmdtexture.Library(language="DE").describe("Blinds")["displayName"] == "Jalousie"
    folder = tmp_path / "mine" / "patterns" / "own"
    folder.mkdir(parents=True)
    Image.fromarray(noise(size=(64, 64))).save(folder / "speckles.png")
    library = cmdtexture.Library(resources=[tmp_path / "mine"])
    assert "speckles" in library.patterns() and "speckles" not in cmdtexture.patterns()
    assert (library.apply(PICTURE, "Sculpture", pattern_name="speckles") != PICTURE).any()
    (folder / "speckles.png").write_bytes(b"no picture")
    with pytest.raises(cmdtexture.UnreadableError, match="speckles"):
        library.apply(PICTURE, "Sculpture", pattern_name="speckles")


def test_progress_rises_to_the_end_on_the_calling_thread():
    told = []
    cmdtexture.fur(noise(size=(300, 300)), progress=lambda done: told.append((done, threading.get_ident())))
    fractions = [done for done, _ in told]
    assert fractions == sorted(fractions) and fractions[-1] == 1 and len(fractions) > 10
    assert {thread for _, thread in told} == {threading.get_ident()}


def test_threads_share_the_interpreter_and_get_their_own_results():
    pictures = [noise(seed=seed, size=(200, 300)) for seed in range(8)]
    alone = [cmdtexture.rough_leather(picture) for picture in pictures]
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        for result, expected in zip(pool.map(cmdtexture.rough_leather, pictures), alone):
            numpy.testing.assert_array_equal(result, expected)
    # While one thread runs an effect, which waits here for the other, another works.
    reached, answered = threading.Event(), threading.Event()

    def wait(done):
        reached.set()
        return not answered.wait(60)

    with concurrent.futures.ThreadPoolExecutor(1) as pool:
        run = pool.submit(cmdtexture.fur, PICTURE, progress=wait)
        assert reached.wait(60)
        cmdtexture.weave(PICTURE)
        answered.set()
        run.result()


def test_processes_that_are_forked():
    expected = cmdtexture.sculpture(PICTURE)
    with multiprocessing.get_context("fork").Pool(2) as pool:
        for result in pool.map(cmdtexture.sculpture, [PICTURE] * 4):
            numpy.testing.assert_array_equal(result, expected)


def test_ctrl_c_ends_a_run():
    script = """
import cmdtexture, numpy
picture = numpy.zeros((8000, 8000, 3), numpy.uint8)
try:
    while True:
        cmdtexture.mosaic_glass(picture, out=picture, progress=lambda done: print(done, flush=True))
except KeyboardInterrupt:
    print("interrupted", (picture == 0).all())
"""
    child = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE, text=True)
    while not 0.1 < float(child.stdout.readline()) < 0.9:
        pass
    child.send_signal(signal.SIGINT)
    begin = time.monotonic()
    output, _ = child.communicate(timeout=60)
    assert output.splitlines()[-1] == "interrupted True"
    assert child.returncode == 0
    print(f"stopped after {time.monotonic() - begin:.3f} s")
