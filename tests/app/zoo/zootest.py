"""zootest.py PROGRAM: takes every picture of the zoo through the program into every kind of file and
has exiftool tell whether each value arrived, was corrected as promised, or is named in a warning;
pngcheck, tiffinfo, jpeginfo and webpinfo judge the files."""
import concurrent.futures
import json
import os
import re
import subprocess
import sys
import tempfile

import zoo

KINDS = ('png', 'jpg', 'tif', 'webp')
# How pixels are coded (exiftool takes strips in JPEG coding for previews), and what exiftool works
# out by itself.
CODING = set('''ImageWidth ImageHeight BitDepth ColorType Compression Filter Interlace Palette Transparency
    BitsPerSample PhotometricInterpretation StripOffsets SamplesPerPixel RowsPerStrip StripByteCounts
    ExtraSamples PlanarConfiguration SubfileType Predictor VP8Version WebP_Flags HorizontalScale VerticalScale
    AlphaIsUsed JFIFVersion EncodingProcess ColorComponents YCbCrSubSampling SourceFile Warning Error
    JPEGTables PreviewImage PreviewImageStart PreviewImageLength ExifByteOrder SampleFormat FillOrder CurrentIPTCDigest Trailer NumberOfImages MPFVersion'''.split())
IGNORED = {'System', 'ExifTool', 'Composite', 'IFD1', 'MPF0', 'MPImage1', 'MPImage2'}
TEXTS = {'Title', 'Author', 'Description', 'Copyright', 'Software', 'CreationTime', 'Comment', 'Artist'}
COLOURS = re.compile('Gamma|WhitePoint[XY]|(Red|Green|Blue)[XY]|SRGBRendering|ColorPrimaries|'
                     'TransferCharacteristics|MatrixCoefficients|VideoFullRangeFlag')
# What a warning says of values that did not arrive, by their group and name.
LOSSES = [(r'PNG.*ModifyDate', 'chunk tIME'), (r'PNG.*BackgroundColor', 'chunk bKGD'),
          (r'PNG.*SignificantBits', 'chunk sBIT'), (r'PNG.*(ImageOffset|VirtualImage|OffsetUnit|Offset)', 'chunk oFFs'),
          (r'RIFF.*PRIV', 'chunk PRIV'), (r'PNG.*prIv', 'chunk prIv'), (r'PNG.*prVt', 'chunk prVt'), (r'Ducky', 'segment APP12'),
          (r'IPTC', 'the IPTC data'), (r'Photoshop', 'the Photoshop data'), (r'(PNG|File).*(Comment|Title|Author|Description|CreationTime|Software|Copyright)', 'the (text|comment)'),
          (r'ICC|PNG-iCCP|PNG.*ProfileName', 'the colour profile'), (r'PNG', 'what its chunks tell'),
          (r'Resolution|PixelsPerUnit|PixelUnits', 'the resolution')]


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, errors='replace')
    return done.returncode, done.stdout + done.stderr


def tags_of(folder):
    out = subprocess.run(['exiftool', '-j', '-b', '-a', '-n', '-u', '-G1:4', '-all', '-ICC_Profile', folder],
                         capture_output=True).stdout
    found = {}
    for picture in json.loads(out):
        tags = []
        for key, value in picture.items():
            parts = key.split(':')
            value = json.dumps(value) if isinstance(value, (list, dict)) else str(value)
            tags.append((parts[0], parts[-1], value))
        found[os.path.basename(picture['SourceFile'])] = tags
    return found


def resolutions(tags):
    """All that is told of the resolution, in pixels a metre; as a ratio where there is no unit."""
    told = set()
    for group in {g for g, _, _ in tags}:
        values = {n: v for g, n, v in tags if g == group}
        x, y = (values.get('XResolution', values.get('PixelsPerUnitX')),
                values.get('YResolution', values.get('PixelsPerUnitY')))
        if not x or not y or group == 'IFD1':
            continue
        unit = values.get('ResolutionUnit', '1')
        metre = {'2': 1 / 0.0254, '3': 100}.get(unit, 0)
        if 'PixelUnits' in values:
            metre = int(values['PixelUnits'])
        elif group == 'JFIF':
            metre = {'1': 1 / 0.0254, '2': 100}.get(unit, 0)
        x, y = float(x), float(y)
        if metre or x != y:
            told.add((round(x * metre / 50), round(y * metre / 50)) if metre else round(x / y, 2))
    return told


def missing(source, tags, arrived, warnings):
    """The values of a picture that neither arrived nor are accounted for."""
    there = {}
    for _, name, value in arrived:
        there.setdefault(name, set()).add(value)
    every_text = ' | '.join(v for _, n, v in arrived if n in TEXTS or n in ('ImageDescription', 'UserComment'))
    turn = max([int(v) for g, n, v in tags if n == 'Orientation' and g in ('IFD0', 'XMP-tiff')], default=1)
    has_profile = any(n == 'ICC_Profile' for _, n, _ in arrived)
    sides = {str(s) for s in zoo.SIZE}
    left = []
    for group, name, value in tags:
        if group in IGNORED or name in CODING or name.startswith('Thumbnail') or (group == 'File' and name != 'Comment'):
            continue
        if value in there.get(name, ()):
            if name != 'Orientation' or value == '1':
                continue
        if name == 'Orientation' and there.get(name) == {'1'}:
            continue
        if turn >= 5 and re.match('ExifImage(Width|Height)', name) and there.get(name, set()) <= sides:
            continue
        if re.search('Resolution|PixelsPerUnit|PixelUnits', name):
            told, wanted = resolutions(arrived), resolutions(tags)
            if turn >= 5:
                wanted = {tuple(reversed(r)) if isinstance(r, tuple) else round(1 / r, 2) for r in wanted}
            if wanted <= told:
                continue
        if group.startswith('PNG') and COLOURS.fullmatch(name) and has_profile:
            continue
        if name == 'BackgroundColor' and source.endswith('png') and name in there:
            continue  # in the terms of the new pixels
        if name == 'ProfileName' and has_profile:
            continue
        if (name in TEXTS or re.match('Title|Comment', name)) and value and value in every_text:
            continue
        if any(re.match(what, '%s:%s' % (group, name)) and re.search(says, warnings) for what, says in LOSSES):
            continue
        left.append('%s: %s:%s = %.60s (now %.60s)' % (source, group, name, value, there.get(name)))
    return left


def faults(kind, path):
    """What the judges of a kind of file say."""
    if kind == 'png':
        code, out = run('pngcheck', '-q', path)
        known = 'public chunk cICP' in out  # newer than pngcheck
        return out if (code or out.strip()) and not known else ''
    if kind == 'jpg':
        code, out = run('jpeginfo', '-c', path)
        return out if code or 'OK' not in out else ''
    if kind == 'webp':
        code, out = run('webpinfo', path)
        return out if code or 'No error detected' not in out else ''
    code, out = run('tiffinfo', '-D', path)
    bad = [line for line in out.splitlines() if re.search('(Warning|Error|TIFF.*:)', line)
           and not re.search('Unknown field with tag|TIFF Directory at|TIFFReadDirectory: Warning, Unknown|<present>', line)]
    return '\n'.join(bad) if code or bad else ''


def main():
    program = os.path.abspath(sys.argv[1])
    pictures = {n: b for n, b in zoo.Zoo().items() if len(sys.argv) < 3 or re.search(sys.argv[2], n)}
    problems = []
    with tempfile.TemporaryDirectory() as folder:
        folder = os.environ.get('ZOO_FOLDER', folder)
        for name in ('in', *KINDS):
            os.makedirs(os.path.join(folder, name), exist_ok=True)
        for name, data in pictures.items():
            with open(os.path.join(folder, 'in', name), 'wb') as file:
                file.write(data)

        def convert(job):
            name, kind = job
            target = os.path.join(folder, kind, name + '.' + kind)
            code, out = run(program, 'apply', 'Blinds', os.path.join(folder, 'in', name), '-o', target,
                            '--quiet', '--overwrite')
            return job, code, out, faults(kind, target) if code == 0 else ''
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            results = list(pool.map(convert, [(n, k) for n in pictures for k in KINDS]))
        before = tags_of(os.path.join(folder, 'in'))
        after = {kind: tags_of(os.path.join(folder, kind)) for kind in KINDS}
        for (name, kind), code, out, judged in results:
            to = '%s to %s' % (name, kind)
            if code:
                problems.append('%s: exit %d: %s' % (to, code, out.strip()))
                continue
            if judged:
                problems.append('%s: %s' % (to, judged.strip()))
            arrived = after[kind][name + '.' + kind]
            known = {v for _, n, v in before[name] if n in ('Warning', 'Error')}
            problems += ['%s: exiftool: %s' % (to, v) for _, n, v in arrived
                         if n in ('Warning', 'Error') and v not in known]
            problems += missing(to, before[name], arrived, out)
    for problem in problems:
        print(problem)
    values = sum(len(tags) for tags in before.values())
    print('%d pictures into %d kinds of file, %d values each: %d problems'
          % (len(pictures), len(KINDS), values, len(problems)))
    return 1 if problems or len(pictures) == 0 else 0


if __name__ == '__main__':
    sys.exit(main())
