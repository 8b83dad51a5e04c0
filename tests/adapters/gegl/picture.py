"""PNG files with random samples, and their samples again, by the letter of the format's description."""
import random
import struct
import zlib

LAYOUTS = {'grey': 0, 'grey-alpha': 4, 'colour': 2, 'colour-alpha': 6}
CHANNELS = {0: 1, 4: 2, 2: 3, 6: 4}


def chunk(kind, data):
    return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))


def write(path, layout, depth, size=(37, 23), seed=1, chunks=()):
    """Smooth enough for an effect to find something in, rough enough to tell every sample."""
    width, height = size
    colour_type = LAYOUTS[layout]
    dice = random.Random(f'{layout} {depth} {seed}')
    top = 2 ** depth - 1
    rows = b''
    for y in range(height):
        rows += b'\0'
        for x in range(width):
            for c in range(CHANNELS[colour_type]):
                wave = (x * (c + 3) + y * (5 - c)) % 97 / 97
                value = int((0.7 * wave + 0.3 * dice.random()) * top)
                rows += value.to_bytes(depth // 8, 'big')
    with open(path, 'wb') as file:
        file.write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', *size, depth, colour_type, 0, 0, 0))
                   + b''.join(chunk(*one) for one in chunks) + chunk(b'IDAT', zlib.compress(rows)) + chunk(b'IEND', b''))


def read(path):
    """(width, height, channels, samples as numbers of 16 bits, row by row)."""
    with open(path, 'rb') as file:
        data = file.read()
    at, packed = 8, b''
    while at < len(data):
        length, kind = struct.unpack('>I4s', data[at:at + 8])
        if kind == b'IHDR':
            width, height, depth, colour_type = struct.unpack('>IIBB', data[at + 8:at + 18])
        if kind == b'IDAT':
            packed += data[at + 8:at + 8 + length]
        at += length + 12
    channels = CHANNELS[colour_type]
    step = channels * depth // 8
    raw, above, rows = zlib.decompress(packed), bytearray(width * step), []
    for y in range(height):
        begin = y * (width * step + 1)
        kind, row = raw[begin], bytearray(raw[begin + 1:begin + 1 + width * step])
        for i in range(len(row)):
            left = row[i - step] if i >= step else 0
            corner = above[i - step] if i >= step else 0
            guess = left + above[i] - corner
            paeth = min((left, above[i], corner), key=lambda value: abs(guess - value))
            row[i] = (row[i] + (0, left, above[i], (left + above[i]) // 2, paeth)[kind]) % 256
        above = row
        rows.append([row[i] * 257 for i in range(len(row))] if depth == 8
                    else list(struct.unpack(f'>{width * channels}H', row)))
    return width, height, channels, rows
