"""calls.py: what a call in Python takes, beside copying the same picture in the same process.

    PYTHONPATH=build/release/lib/python3/dist-packages /usr/bin/python3 bench/adapters/calls.py

`bench-capi` has the effect alone and the call in C in the same measure: copies of the processors' time.
The last lines are the time by the clock that a picture takes one after another and on threads.
"""

import concurrent.futures
import statistics
import time

import cmdtexture
import numpy

SIZES = {"0.25 MP": (500, 500), "2 MP": (1250, 1600), "24 MP": (4000, 6000)}


def seconds_of(work, clock=time.process_time):
    begin = clock()
    work()
    return clock() - begin


for effect in ("Sandstone", "Weave"):
    for name, (height, width) in SIZES.items():
        rows = numpy.arange(height, dtype=numpy.uint32)[:, None, None]
        columns = numpy.arange(width, dtype=numpy.uint32)[None, :, None]
        picture = (rows * 3 + columns * 2 + numpy.array([0, 40, 90], numpy.uint32)).astype(numpy.uint8)
        copy, out = numpy.empty_like(picture), numpy.empty_like(picture)
        cmdtexture.apply(picture, effect, out=out)
        ratios, clock = [], []
        for _ in range(15):
            copying = min(seconds_of(lambda: numpy.copyto(copy, picture)) for _ in range(3))
            begin = time.perf_counter()
            ratios.append(seconds_of(lambda: cmdtexture.apply(picture, effect, out=out)) / copying)
            clock.append(time.perf_counter() - begin)
        print(f"{effect} {name}: {statistics.median(ratios):.1f} copies, "
              f"{1000 * statistics.median(clock):.2f} ms")

tiny = numpy.zeros((8, 8, 3), numpy.uint8)
print(f"8 x 8 pixels: {1e6 * min(seconds_of(lambda: cmdtexture.sandstone(tiny)) for _ in range(500)):.0f} us")
for name, (height, width) in SIZES.items():
    pictures = [numpy.zeros((height, width, 3), numpy.uint8)] * (8 if height > 2000 else 40)
    alone = seconds_of(lambda: list(map(cmdtexture.sandstone, pictures)), time.perf_counter)
    for threads in (2, 4):
        with concurrent.futures.ThreadPoolExecutor(threads) as pool:
            pooled = seconds_of(lambda: list(pool.map(cmdtexture.sandstone, pictures)), time.perf_counter)
        print(f"{name}: {1000 * alone / len(pictures):.1f} ms one by one, "
              f"{1000 * pooled / len(pictures):.1f} on {threads} threads")
