"""Augments a training set: augment.py SOURCE-FOLDER TARGET-FOLDER [VARIANTS [SEED]]

Writes VARIANTS (4) changed copies of each picture, each with an effect and values by chance, mild
enough to leave the picture what it shows. The same SEED (0) gives the same files.
"""

import concurrent.futures
import pathlib
import random
import sys
import zlib

import cmdtexture
from PIL import Image

EFFECTS = ["Blinds", "FineLeather", "Fur", "Sandstone", "StrawWall", "Texture", "Tiles", "Weave"]
KINDS = {".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp"}


def values_for(effect, chance):
    """Integers at most a fifth of their range from the default, booleans as they fall."""
    values = {}
    for row in cmdtexture.describe(effect)["parameters"]:
        if row["type"] == "integer":
            reach = (min(row["maximum"], 4 * row["default"] + 40) - row["minimum"]) // 5
            values[row["name"]] = chance.randint(max(row["minimum"], row["default"] - reach),
                                                 min(row["maximum"], row["default"] + reach))
        elif row["type"] == "boolean":
            values[row["name"]] = chance.random() < 0.5
    return values


def augment(file, target, variants, seed):
    picture = Image.open(file)
    picture = picture.convert("RGBA" if "transparency" in picture.info else "RGB")
    for number in range(variants):
        chance = random.Random(zlib.crc32(f"{file.name} {number} {seed}".encode()))
        effect = chance.choice(EFFECTS)
        changed = cmdtexture.apply(picture, effect, **values_for(effect, chance))
        # Half of the picture's own look stays.
        mixed = Image.blend(picture, changed, chance.uniform(0.3, 0.7))
        mixed.save(target / f"{file.stem}-{number}-{effect}.png")


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    source, target = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    variants = int(sys.argv[3]) if len(sys.argv) > 3 else 4
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else 0
    target.mkdir(parents=True, exist_ok=True)
    files = sorted(file for file in source.iterdir() if file.suffix.lower() in KINDS)
    # Threads are enough: the interpreter is free while an effect runs.
    with concurrent.futures.ThreadPoolExecutor() as pool:
        for file, run in [(file, pool.submit(augment, file, target, variants, seed)) for file in files]:
            try:
                run.result()
            except (OSError, cmdtexture.Error) as error:
                print(f"{file}: {error}", file=sys.stderr)


if __name__ == "__main__":
    main()
