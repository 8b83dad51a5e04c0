"""Pictures with every sort of data besides their pixels, laid out by hand so that nothing of what
is under test has a part in them. Zoo() answers {file name: bytes}."""
import io
import struct
import zlib

from PIL import Image, ImageCms

SIZE = (24, 16)


# --- TIFF structures, in either byte order

def ifd_bytes(at, entries, order, follow=0):
    """A directory at an offset, its values behind it. An entry is (tag, type, data) or
    (tag, type, data, place), whose value lies where its place tells."""
    entries = sorted(entries, key=lambda entry: entry[0])
    item = {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 7: 1, 9: 4, 10: 8, 12: 8, 13: 4, 16: 8}
    out = struct.pack(order + 'H', len(entries))
    values = b''
    values_at = at + 2 + 12 * len(entries) + 4
    for tag, kind, data, *_ in entries:
        if isinstance(data, (list, tuple)):
            code = {3: 'H', 4: 'I', 5: 'I', 9: 'i', 10: 'i', 12: 'd'}[kind]
            data = struct.pack(order + code * len(data), *data)
        out += struct.pack(order + 'HHI', tag, kind, len(data) // item[kind])
        if len(data) <= 4:
            out += data.ljust(4, b'\0')
        else:
            out += struct.pack(order + 'I', values_at + len(values))
            values += data + b'\0' * (len(data) % 2)
    return out + struct.pack(order + 'I', follow) + values


MAKERS = {
    'Canon': lambda at, o: ifd_bytes(at, [(6, 2, b'IMG:PowerShot of rain\0'), (9, 2, b'A. Owner of it\0')], o),
    'Panasonic': lambda at, o: b'Panasonic\0\0\0' + ifd_bytes(
        at + 12, [(0x51, 2, b'LUMIX G VARIO 14-42\0'), (0x52, 2, b'XT1234567890\0')], o),
    'NIKON CORPORATION': lambda at, o: b'Nikon\0\2\x10\0\0' + header(o) + ifd_bytes(
        8, [(4, 2, b'FINE AND MORE\0'), (5, 2, b'SUNNY SKIES\0')], o),
    'FUJIFILM': lambda at, o: b'FUJIFILM\x0c\0\0\0' + ifd_bytes(
        12, [(0x1000, 2, b'F-NORMAL \0'), (0x0010, 2, b'serial 0123456789\0')], '<'),
    'SONY': lambda at, o: b'SONY DSC \0\0\0' + ifd_bytes(
        at + 12, [(0xb020, 2, b'Standard colours\0'), (0xb001, 3, [2])], o),
}


def header(order):
    return (b'II*\0' if order == '<' else b'MM\0*') + struct.pack(order + 'I', 8)


def exif(order='<', orientation=1, maker=None, gps=False, thumbnail=False, dpi=(300, 150), more=()):
    """EXIF data as one block. Directories at fixed places far from each other."""
    main = [(0x10e, 2, b'Rain over a field\0'), (0x10f, 2, (maker or 'Maker').encode() + b'\0'),
            (0x110, 2, b'Model 5\0'), (0x112, 3, [orientation]), (0x8298, 2, b'Somebody\0'),
            (0x9c9b, 1, 'Titel \u00fc'.encode('utf-16le') + b'\0\0'), (0x8769, 4, [1024]), *more]
    if dpi:
        main += [(0x11a, 5, [dpi[0], 1]), (0x11b, 5, [dpi[1], 1]), (0x128, 3, [2])]
    camera = [(0x829a, 5, [1, 250]), (0x9000, 7, b'0231'), (0x9003, 2, b'2021:02:03 04:05:06\0'),
              (0xa002, 4, [SIZE[0]]), (0xa003, 4, [SIZE[1]]), (0xa005, 4, [3072]),
              (0x9286, 7, b'ASCII\0\0\0a comment of the user')]
    if maker:
        camera.append((0x927c, 7, MAKERS[maker](2048, order)))
    if gps:
        main.append((0x8825, 4, [3584]))
    block = bytearray(header(order).ljust(8192, b'\0'))

    def put(at, data):
        block[at:at + len(data)] = data
    put(8, ifd_bytes(8, main, order, 4096 if thumbnail else 0))
    if maker:  # where its offsets count from
        note = camera.pop()
        put(2048, note[2])
        camera.append(note)
    put(1024, ifd_bytes(1024, camera, order))
    if maker:
        at = bytes(block).index(struct.pack(order + 'HH', 0x927c, 7), 1024) + 8
        put(at, struct.pack(order + 'I', 2048))
    put(3072, ifd_bytes(3072, [(1, 2, b'R98\0'), (2, 7, b'0100')], order))
    if gps:
        put(3584, ifd_bytes(3584, [(1, 2, b'N\0'), (2, 5, [52, 1, 30, 1, 1234, 100]), (3, 2, b'E\0'),
                                   (4, 5, [13, 1, 24, 1, 55, 1]), (0, 1, b'\2\3\0\0')], order))
    if thumbnail:
        small = jpeg_pixels('L')
        put(4096, ifd_bytes(4096, [(0x103, 3, [6]), (0x201, 4, [4200]), (0x202, 4, [len(small)])], order))
        put(4200, small)
    return bytes(block)


def tiff(order='<', mode='RGB', tags=(), sub=(), bits=8, front=b''):
    """One strip, then the main directory; sub-directories as (pointer tag, entries)."""
    samples = {'L': 1, 'RGB': 3, 'RGBA': 4}[mode]
    image = Image.linear_gradient('L').resize(SIZE).convert(mode)
    pixels = image.tobytes()
    if bits == 16:
        pixels = b''.join(struct.pack(order + 'H', v * 257) for v in pixels)
    out = header(order) + pixels
    if front:  # a block whose offsets hold, ahead of the pixels
        out = front + pixels
    strip = len(out) - len(pixels)
    entries = [(256, 4, [SIZE[0]]), (257, 4, [SIZE[1]]), (258, 3, [bits] * samples), (259, 3, [1]),
               (262, 3, [1 if mode == 'L' else 2]), (273, 4, [strip]), (277, 3, [samples]),
               (278, 4, [SIZE[1]]), (279, 4, [len(pixels)]), *tags]
    if mode == 'RGBA':
        entries.append((338, 3, [2]))
    for pointer, below in sub:
        at = len(out)
        out += ifd_bytes(at, below, order)
        out += b'\0' * (len(out) % 2)
        entries.append((pointer, 4, [at]))
    out += b'\0' * (len(out) % 2)
    at = len(out)
    return out[:4] + struct.pack(order + 'I', at) + out[8:] + ifd_bytes(at, entries, order)


# --- the blocks

def icc(pad=0, space='sRGB'):
    profile = ImageCms.ImageCmsProfile(ImageCms.createProfile(space)).tobytes()
    profile += b'\0' * (pad - len(profile)) if pad else b''
    return struct.pack('>I', len(profile)) + profile[4:]


def grey_icc():
    """A grey profile: header, white point, a gamma curve and texts."""
    tags = {b'wtpt': b'XYZ \0\0\0\0' + struct.pack('>iii', 0xf6d6, 0x10000, 0xd32d),
            b'kTRC': b'curv\0\0\0\0' + struct.pack('>IH', 1, 0x0233) + b'\0\0',
            b'cprt': b'text\0\0\0\0nobody\0\0',
            b'desc': b'desc\0\0\0\0' + struct.pack('>I', 5) + b'Grey\0' + b'\0' * 79}
    table, data = struct.pack('>I', len(tags)), b''
    for name, value in tags.items():
        table += name + struct.pack('>II', 132 + 12 * len(tags) + len(data), len(value))
        data += value + b'\0' * (-len(value) % 4)
    size = 128 + len(table) + len(data)
    head = struct.pack('>I4sI4s4s4s', size, b'none', 0x02400000, b'mntr', b'GRAY', b'XYZ ')
    head += struct.pack('>6H', 2020, 1, 1, 0, 0, 0) + b'acsp' + b'\0' * 28
    head += struct.pack('>iii', 0xf6d6, 0x10000, 0xd32d)
    return head.ljust(128, b'\0') + table + data


def xmp(orientation=None, unicode_text='Regen \u96e8 \U0001f327'):
    turned = ' tiff:Orientation="%d" exif:PixelXDimension="%d" exif:PixelYDimension="%d"' % (
        orientation, *SIZE) if orientation else ''
    return ('<?xpacket begin="\ufeff" id="W5M0MpCehiHzreSzNTczkc9d"?><x:xmpmeta xmlns:x="adobe:ns:meta/">'
            '<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description rdf:about=""'
            ' xmlns:tiff="http://ns.adobe.com/tiff/1.0/" xmlns:exif="http://ns.adobe.com/exif/1.0/"'
            ' xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:xmp="http://ns.adobe.com/xap/1.0/"%s'
            ' xmp:Rating="4"><dc:title><rdf:Alt><rdf:li xml:lang="x-default">%s</rdf:li></rdf:Alt></dc:title>'
            '</rdf:Description></rdf:RDF></x:xmpmeta>%s<?xpacket end="w"?>'
            % (turned, unicode_text, ' ' * 40)).encode()


def iptc():
    def record(number, dataset, data):
        return struct.pack('>BBBH', 0x1c, number, dataset, len(data)) + data
    return (record(1, 90, b'\x1b%G') + record(2, 0, b'\0\4') + record(2, 5, 'Regen \u96e8'.encode())
            + record(2, 25, b'rain') + record(2, 25, b'field') + record(2, 80, b'Somebody Else'))


def resources(with_more=False):
    def one(number, data):
        return b'8BIM' + struct.pack('>HHI', number, 0, len(data)) + data + b'\0' * (len(data) % 2)
    more = one(0x3ed, struct.pack('>IHHIHH', 300 << 16, 1, 1, 300 << 16, 1, 1)) if with_more else b''
    return more + one(0x404, iptc()) + (one(0x40a, b'\1') if with_more else b'')


# --- PNG

def chunk(kind, data):
    return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))


def png(before=(), after=(), mode='RGB', palette=()):
    buffer = io.BytesIO()
    Image.linear_gradient('L').resize(SIZE).convert(mode).save(buffer, 'PNG')
    data, out, at = buffer.getvalue(), b'', 8
    while at < len(data):
        length = struct.unpack('>I', data[at:at + 4])[0]
        kind, whole = data[at + 4:at + 8], data[at:at + 12 + length]
        if kind == b'IDAT' and before is not None:
            out += b''.join(chunk(*c) for c in palette) + b''.join(
                chunk(*c) for c in before if c[0] not in (b'gAMA', b'cHRM', b'sRGB', b'iCCP', b'sBIT', b'cICP'))
            before = None
        if kind == b'IEND':
            out += b''.join(chunk(*c) for c in after)
        out += whole
        if kind == b'IHDR':
            out += b''.join(chunk(*c) for c in before
                            if c[0] in (b'gAMA', b'cHRM', b'sRGB', b'iCCP', b'sBIT', b'cICP'))
        at += 12 + length
    return data[:8] + out


def text(keyword, value):
    return b'tEXt', keyword.encode('latin-1') + b'\0' + value.encode('latin-1')


def international(keyword, value, language='', translated='', packed=False):
    data = zlib.compress(value.encode()) if packed else value.encode()
    return b'iTXt', (keyword.encode('latin-1') + bytes([0, packed, 0]) + language.encode() + b'\0'
                     + translated.encode() + b'\0' + data)


def raw_profile(kind, data):
    digits = data.hex()
    lines = '\n'.join(digits[i:i + 72] for i in range(0, len(digits), 72))
    body = '\n%s\n%8d\n%s\n' % (kind, len(data), lines)
    return b'zTXt', b'Raw profile type ' + kind.encode() + b'\0\0' + zlib.compress(body.encode())


def iccp(profile):
    return b'iCCP', b'a name\0\0' + zlib.compress(profile)


CHRM = b'cHRM', struct.pack('>8I', 31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000)
GAMA = b'gAMA', struct.pack('>I', 45455)
PNG_XMP = 'XML:com.adobe.xmp'


# --- JPEG

def jpeg_pixels(mode='RGB'):
    buffer = io.BytesIO()
    Image.linear_gradient('L').resize(SIZE).convert(mode).save(buffer, 'JPEG')
    return buffer.getvalue()


def segment(marker, data):
    return bytes([0xff, marker]) + struct.pack('>H', len(data) + 2) + data


def jfif(unit=0, x=1, y=1):
    return segment(0xe0, b'JFIF\0\1\1' + struct.pack('>BHHBB', unit, x, y, 0, 0))


def jpeg(*segments, mode='RGB', tail=b''):
    data = jpeg_pixels(mode)
    at = 4 + struct.unpack('>H', data[4:6])[0]
    return data[:2] + b''.join(segments) + data[at:] + tail


def icc_segments(profile, piece=65519):
    parts = [profile[i:i + piece] for i in range(0, len(profile), piece)]
    return b''.join(segment(0xe2, b'ICC_PROFILE\0' + bytes([i + 1, len(parts)]) + part)
                    for i, part in enumerate(parts))


def app_exif(block):
    return segment(0xe1, b'Exif\0\0' + block)


def app_xmp(packet):
    return segment(0xe1, b'http://ns.adobe.com/xap/1.0/\0' + packet)


def app_iptc(data=None):
    return segment(0xed, b'Photoshop 3.0\0' + (data or resources()))


def mpf(first):
    """A second picture behind the first, and the index of both."""
    entries = struct.pack('<IIIHH', 0x30000, 0, 0, 0, 0) + struct.pack('<IIIHH', 2, 500, 900, 0, 0)
    index = header('<') + ifd_bytes(8, [(0xb000, 7, b'0100'), (0xb001, 4, [2]), (0xb002, 7, entries)], '<')
    return jpeg(first, segment(0xe2, b'MPF\0' + index), tail=jpeg_pixels('L'))


# --- WebP

def webp(chunks=(), mode='RGB', lossless=True):
    buffer = io.BytesIO()
    Image.linear_gradient('L').resize(SIZE).convert(mode).save(buffer, 'WEBP', lossless=lossless)
    data = buffer.getvalue()
    body, flags, at = b'', 0x10 if mode == 'RGBA' else 0, 12
    while at < len(data):
        length = struct.unpack('<I', data[at + 4:at + 8])[0]
        if data[at:at + 4] != b'VP8X':
            body += data[at:at + 8 + length + length % 2]
        at += 8 + length + length % 2
    front = b''
    for kind, content in chunks:
        whole = kind + struct.pack('<I', len(content)) + content + b'\0' * (len(content) % 2)
        flags |= {b'ICCP': 0x20, b'EXIF': 8, b'XMP ': 4}.get(kind, 0)
        front, body = (front + whole, body) if kind == b'ICCP' else (front, body + whole)
    sides = struct.pack('<I', SIZE[0] - 1)[:3] + struct.pack('<I', SIZE[1] - 1)[:3]
    body = b'VP8X' + struct.pack('<IB3x', 10, flags) + sides + front + body
    return b'RIFF' + struct.pack('<I', len(body) + 4) + b'WEBP' + body


def coded(kind, **how):
    """A picture in another library's coding, large enough for several strips."""
    buffer = io.BytesIO()
    Image.linear_gradient('L').resize((200, 150)).convert('RGB').save(buffer, kind, **how)
    return buffer.getvalue()


def Zoo():
    zoo = {'%s.tif' % how: coded('TIFF', compression=how)
           for how in ('jpeg', 'tiff_lzw', 'tiff_adobe_deflate', 'packbits')}
    zoo['progressive.jpg'] = coded('JPEG', progressive=True)
    blocks = {'intel': exif(), 'motorola': exif('>'), 'gps': exif(gps=True), 'gpsmm': exif('>', gps=True),
              'thumb': exif(thumbnail=True), 'nodpi': exif(dpi=None)}
    blocks |= {'turn%d' % o: exif('<>'[o % 2], orientation=o, thumbnail=o % 3 == 0) for o in range(2, 9)}
    for maker in MAKERS:
        for order in '<>':
            blocks[maker.split()[0].lower() + ('ii' if order == '<' else 'mm')] = exif(order, maker=maker)
    for name, block in blocks.items():
        zoo['exif-%s.jpg' % name] = jpeg(jfif(), app_exif(block))
        if len(zoo) % 2 or 'turn' in name:
            zoo['exif-%s.png' % name] = png([(b'eXIf', block)])
            zoo['exif-%s.webp' % name] = webp([(b'EXIF', block)])
    for maker in MAKERS:
        note = exif(maker=maker)
        zoo['front-%s.tif' % maker.split()[0].lower()] = tiff(
            front=note, tags=[(0x10f, 2, maker.encode() + b'\0'), (0x8769, 4, [1024])])
    zoo |= {
        'dpi.jpg': jpeg(jfif(1, 300, 200)), 'dpcm.jpg': jpeg(jfif(2, 118, 60)), 'aspect.jpg': jpeg(jfif(0, 3, 4)),
        'bare.jpg': jpeg(), 'grey.jpg': jpeg(jfif(), icc_segments(grey_icc()), mode='L'),
        'icc.jpg': jpeg(jfif(), icc_segments(icc())), 'icc180k.jpg': jpeg(jfif(), icc_segments(icc(184320))),
        'iccsplit.jpg': jpeg(jfif(), icc_segments(icc(), 100)),
        'xmp.jpg': jpeg(jfif(), app_xmp(xmp())), 'iptc.jpg': jpeg(jfif(), app_iptc()),
        'resources.jpg': jpeg(jfif(), app_iptc(resources(True))),
        'comment.jpg': jpeg(jfif(), segment(0xfe, b'rain on a field')),
        'comments.jpg': jpeg(jfif(), segment(0xfe, 'R\u00e9gen \u96e8'.encode()), segment(0xfe, b'the second')),
        'ducky.jpg': jpeg(jfif(), segment(0xec, b'Ducky\0\1\0\4\0\0\0\x50\0\0')),
        'mpf.jpg': mpf(jfif()), 'tail.jpg': jpeg(jfif(), tail=b'a trailer of a phone'),
        'turnedxmp.jpg': jpeg(app_exif(exif('>', orientation=6)), app_xmp(xmp(6))),
        'all.jpg': jpeg(jfif(1, 300, 300), app_exif(exif(maker='Canon', gps=True, thumbnail=True, dpi=(300, 300))),
                        app_xmp(xmp()), icc_segments(icc(184320)), app_iptc(), segment(0xfe, b'a comment')),
        'plain.png': png(), 'phys.png': png([(b'pHYs', struct.pack('>IIB', 11811, 5906, 1))]),
        'physaspect.png': png([(b'pHYs', struct.pack('>IIB', 3, 4, 0))]),
        'text.png': png([text('Title', 'R\u00e9gen'), text('Creation Time', '2021-02-03'), text('Author', 'Somebody')]),
        'ztxt.png': png([(b'zTXt', b'Description\0\0' + zlib.compress(b'rain ' * 50))]),
        'itxt.png': png([international('Title', 'Regen \u96e8', 'de-AT', 'Titel'), international('Comment', 'caf\u00e9', packed=True)]),
        'late.png': png(after=[(b'eXIf', exif()), international(PNG_XMP, xmp().decode()), text('Software', 'rain 1.0')]),
        'gama.png': png([GAMA]), 'chrm.png': png([GAMA, CHRM]), 'srgb.png': png([(b'sRGB', b'\1'), GAMA]),
        'cicp.png': png([(b'cICP', bytes([12, 13, 0, 1]))]), 'hdr.png': png([(b'cICP', bytes([9, 16, 0, 1]))]),
        'sbit.png': png([(b'sBIT', b'\5\6\5')]), 'bkgd.png': png([(b'bKGD', struct.pack('>3H', 10, 20, 30))]),
        'time.png': png([(b'tIME', struct.pack('>H5B', 2021, 2, 3, 4, 5, 6))]),
        'offs.png': png([(b'oFFs', struct.pack('>iiB', 5, -7, 0))]),
        'greyalpha.png': png([(b'sBIT', b'\5\6'), GAMA], mode='LA'), 'rgba.png': png([iccp(icc())], mode='RGBA'),
        'bits.png': png([(b'bKGD', b'\0\1'), text('Title', 'one bit')], mode='1'),
        'palette.png': png([(b'bKGD', b'\1'), GAMA], mode='P'), 'grey.png': png([iccp(grey_icc())], mode='L'),
        'icc.png': png([iccp(icc())]), 'icc180k.png': png([iccp(icc(184320))]),
        'xmp.png': png([international(PNG_XMP, xmp().decode())]),
        'xmppacked.png': png([international(PNG_XMP, xmp().decode(), packed=True)]),
        'iptc.png': png([raw_profile('iptc', resources())]), 'iptcbare.png': png([raw_profile('iptc', iptc())]),
        'oldexif.png': png([raw_profile('exif', b'Exif\0\0' + exif(orientation=6))]),
        'private.png': png([(b'prVt', b'mine'), (b'prIv', b'mine too')]),
        'turnedxmp.png': png([(b'eXIf', exif(orientation=8)), international(PNG_XMP, xmp(8).decode()),
                              (b'pHYs', struct.pack('>IIB', 11811, 5906, 1))]),
        'all.png': png([(b'eXIf', exif('>', maker='Canon', gps=True)), iccp(icc()), international(PNG_XMP, xmp().decode()),
                        raw_profile('iptc', resources()), text('Comment', 'rain')]),
        'plain.webp': webp(), 'lossy.webp': webp(lossless=False), 'alpha.webp': webp(mode='RGBA'),
        'icc.webp': webp([(b'ICCP', icc(184320))]), 'xmp.webp': webp([(b'XMP ', xmp())]),
        'private.webp': webp([(b'PRIV', b'mine')]),
        'turnedxmp.webp': webp([(b'EXIF', exif(orientation=5)), (b'XMP ', xmp(5))]),
        'all.webp': webp([(b'ICCP', icc()), (b'EXIF', exif('>', gps=True)), (b'XMP ', xmp())]),
    }
    camera = [(0x829a, 5, [1, 250]), (0x9003, 2, b'2021:02:03 04:05:06\0'), (0x9000, 7, b'0231')]
    place = [(1, 2, b'N\0'), (2, 5, [52, 1, 30, 1, 1234, 100]), (0, 1, b'\2\3\0\0')]
    geo = [(33550, 12, [10.0, 10.0, 0.0]), (33922, 12, [0.0, 0.0, 0.0, 350807.4, 5316081.3, 0.0]),
           (34735, 3, [1, 1, 0, 2, 1024, 0, 1, 1, 1026, 34737, 7, 0]), (34737, 2, b'rainy |\0')]
    for order, name in (('<', 'ii'), ('>', 'mm')):
        zoo |= {'%s-%s.tif' % (key, name): value for key, value in {
            'plain': tiff(order), 'grey': tiff(order, 'L', [(34675, 7, grey_icc())]), 'deep': tiff(order, bits=16),
            'alpha': tiff(order, 'RGBA'),
            'dpi': tiff(order, tags=[(282, 5, [300, 1]), (283, 5, [150, 1]), (296, 3, [2])]),
            'unit': tiff(order, tags=[(282, 5, [3, 1]), (283, 5, [4, 1]), (296, 3, [1])]),
            'texts': tiff(order, tags=[(270, 2, b'Rain over a field\0'), (305, 2, b'rain 1.0\0'), (315, 2, b'Somebody\0'),
                                       (0x9c9b, 1, 'Titel'.encode('utf-16le') + b'\0\0')]),
            'exif': tiff(order, tags=[(0x10f, 2, b'Maker\0')], sub=[(0x8769, camera), (0x8825, place)]),
            'geo': tiff(order, tags=geo), 'icc': tiff(order, tags=[(34675, 7, icc(184320))]),
            'xmp': tiff(order, tags=[(700, 1, xmp())]), 'iptc': tiff(order, tags=[(33723, 7, iptc())]),
            'photoshop': tiff(order, tags=[(34377, 7, resources(True))]), 'turn': tiff(order, tags=[
                (274, 3, [6]), (282, 5, [300, 1]), (283, 5, [150, 1]), (296, 3, [2]), (700, 1, xmp(6))]),
            'private': tiff(order, tags=[(65000, 2, b'of my own\0'), (42112, 2, b'<GDALMetadata/>\0')]),
            'colour': tiff(order, tags=[(318, 5, [3127, 10000, 329, 1000]), (319, 5, [64, 100, 33, 100, 21, 100, 71, 100, 15, 100, 6, 100])]),
        }.items()}
    return zoo
