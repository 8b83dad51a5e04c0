"""A contact sheet of all effects on one picture: contact_sheet.py PICTURE SHEET [WIDTH]

WIDTH (300) is that of one picture on the sheet in pixels.
"""

import sys

import cmdtexture
from PIL import Image, ImageDraw, ImageOps

COLUMNS = 5
GAP = 12


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    width = int(sys.argv[3]) if len(sys.argv) > 3 else 300
    photo = ImageOps.exif_transpose(Image.open(sys.argv[1])).convert("RGB")
    photo = photo.resize((width, max(1, photo.height * width // photo.width)))

    pictures = {"The photograph": photo}
    for effect in cmdtexture.effects():
        name = cmdtexture.describe(effect)["displayName"]
        pictures[name] = cmdtexture.apply(photo, effect)

    rows = -(-len(pictures) // COLUMNS)
    step = (width + GAP, photo.height + 2 * GAP)
    sheet = Image.new("RGB", (COLUMNS * step[0] + GAP, rows * step[1] + GAP), "white")
    draw = ImageDraw.Draw(sheet)
    for number, (name, picture) in enumerate(pictures.items()):
        x, y = GAP + number % COLUMNS * step[0], GAP + number // COLUMNS * step[1]
        sheet.paste(picture, (x, y))
        draw.text((x, y + photo.height + 4), name, fill="black")
    sheet.save(sys.argv[2])


if __name__ == "__main__":
    main()
