"""operations.py GEGL BUILD FOLDER CASE: runs operations with the program GEGL in FOLDER and compares
what it writes with what the program of BUILD makes, sample by sample. CASE is an effect (all layouts
and depths, default and random values) or a function of this file."""
import json
import os
import random
import re
import shutil
import subprocess
import sys

import picture

GEGL, BUILD, FOLDER, CASE = sys.argv[1:]
PROGRAM = f'{BUILD}/bin/cmdtexture'
failures = []


def system_folder():
    lines = subprocess.run(['pkg-config', '--variable=pluginsdir', 'gegl-0.4'], capture_output=True, text=True)
    return lines.stdout.strip()


def environment(folder=None, **more):
    kept = {name: os.environ[name] for name in ('PATH', 'HOME') if name in os.environ}
    return {**kept, 'LC_ALL': 'C.UTF-8', 'XDG_CONFIG_HOME': FOLDER, 'XDG_CACHE_HOME': FOLDER,
            'GEGL_PATH': f'{system_folder()}:{folder or BUILD + "/lib/gegl"}', **more}


def gegl(source, result, chain, **more):
    """What the program said; its exit status says nothing."""
    if os.path.exists(result):
        os.remove(result)
    run = subprocess.run([GEGL, source, '-o', result, '--', *chain], capture_output=True, text=True, errors='replace',
                         env=environment(**more), timeout=300)
    return run.stdout + run.stderr


def apply(effect, source, result, *options):
    subprocess.run([PROGRAM, 'apply', effect, source, '-o', result, '--overwrite', '--quiet', *options],
                   check=True, env=environment(), timeout=300)


def kebab(name):
    return re.sub('(?<!^)([A-Z])', r'-\1', name).lower()


def operation(effect):
    return 'cmdtexture:' + kebab(effect)


def compare(what, got, expected, said=''):
    if not os.path.exists(got):
        failures.append(f'{what}: there is no picture: {said}')
        return
    got, expected = picture.read(got) if isinstance(got, str) else got, \
        picture.read(expected) if isinstance(expected, str) else expected
    if got[:3] != expected[:3]:
        failures.append(f'{what}: {got[:3]} instead of {expected[:3]}')
        return
    for y, (row, wanted) in enumerate(zip(got[3], expected[3])):
        for i, (sample, right) in enumerate(zip(row, wanted)):
            if sample != right:
                failures.append(f'{what}: x={i // got[2]} y={y} channel {i % got[2]}: {sample}, not {right}')
                return


def described(effect, *options):
    run = subprocess.run([PROGRAM, 'describe', effect, '--json', *options], capture_output=True, text=True,
                         check=True, env=environment())
    return json.loads(run.stdout)


def effects():
    run = subprocess.run([PROGRAM, 'list', '--json'], capture_output=True, text=True, check=True, env=environment())
    return [effect['name'] for effect in json.loads(run.stdout)]


def resources(kind):
    run = subprocess.run([PROGRAM, 'resources', '--json'], capture_output=True, text=True, check=True,
                         env=environment())
    return [one for one in json.loads(run.stdout) if one['kind'] == kind]


def random_values(effect, dice, size):
    """Values for every parameter, as the program takes them and as the operation does."""
    options, properties = [], []
    for parameter in described(effect, '--canvas', '%dx%d' % size)['parameters']:
        name, kind = parameter['name'], parameter['type']
        key = kebab(name)
        if kind == 'integer':
            value = str(dice.randint(parameter['minimum'], parameter['maximum']))
            shown = value
        elif kind == 'boolean':
            value = shown = dice.choice(['true', 'false'])
        elif kind == 'enumeration':
            value = shown = dice.choice(parameter['members'])
        elif kind == 'colour':
            value = shown = '#%06X' % dice.randrange(1 << 24)
        elif name == 'Category':
            continue
        else:
            value = shown = dice.choice(resources(name.removesuffix('Name').lower()))['name']
            # By its place in the list, or by its name.
            key = dice.choice([key, key.removesuffix('-name')])
        options += ['-p', f'{name}={value}']
        properties.append(f'{key}={shown}')
    return options, properties


def every_format(effect):
    size = (37, 23)
    for layout in picture.LAYOUTS:
        for depth in (8, 16):
            source = f'{layout}-{depth}.png'
            picture.write(source, layout, depth, size)
            dice = random.Random(f'{effect} {source}')
            for options, properties in ([], []), random_values(effect, dice, size):
                apply(effect, source, 'expected.png', *options)
                said = gegl(source, 'got.png', [operation(effect), *properties])
                compare(f'{effect} {source} {properties}', 'got.png', 'expected.png', said)


def names():
    """All effects are there, under the names that `describe` tells, and nothing else of ours."""
    run = subprocess.run([GEGL, '--list-all'], capture_output=True, text=True, errors='replace', env=environment())
    got = {line for line in run.stdout.split() if line.startswith('cmdtexture:')}
    told = [subprocess.run([PROGRAM, 'describe', effect], capture_output=True, text=True, check=True,
                           env=environment()).stdout for effect in effects()]
    wanted = {word for text in told for word in text.split() if word.startswith('cmdtexture:')}
    if got != wanted or len(got) != 14:
        failures.append(f'{sorted(got)} instead of {sorted(wanted)}')


def place():
    """A picture at its place on a canvas, which the operation is told or, for a pattern that hangs on
    the canvas, ends where the picture does."""
    picture.write('in.png', 'colour', 8)
    at = ['gegl:translate', 'x=11', 'y=7']
    for effect in effects():
        apply(effect, 'in.png', 'expected.png', '--canvas', '90x61', '--at', '11,7')
        said = gegl('in.png', 'got.png', [*at, operation(effect), 'canvas-width=90', 'canvas-height=61'])
        compare(f'{effect} on a canvas', 'got.png', 'expected.png', said)
    for effect, chain, options in (('Weave', at, ['--canvas', '48x30', '--at', '11,7']), ('Fur', at, []),
                                   ('Blinds', ['gegl:translate', 'x=-5', 'y=-9'], [])):
        apply(effect, 'in.png', 'expected.png', *options)
        said = gegl('in.png', 'got.png', [*chain, operation(effect)])
        compare(f'{effect} {chain}', 'got.png', 'expected.png', said)


def tiles():
    """What is asked for in part is that part of the whole."""
    left, top, width, height = 13, 5, 17, 11
    picture.write('in.png', 'colour-alpha', 8)
    for effect in effects():
        apply(effect, 'in.png', 'whole.png')
        whole = picture.read('whole.png')
        part = (width, height, 4, [row[4 * left:4 * (left + width)] for row in whole[3][top:top + height]])
        said = gegl('in.png', 'got.png', [operation(effect), 'gegl:crop', f'x={left}', f'y={top}',
                                          f'width={width}', f'height={height}'])
        compare(f'{effect} in part', 'got.png', part, said)


def precision():
    """Samples of other kinds go through 16 bits, gamma and all."""
    picture.write('in.png', 'colour-alpha', 16)
    for effect in 'Sandstone', 'Weave':
        apply(effect, 'in.png', 'expected.png')
        for kind in 'RGBA float', "R'G'B'A double", 'RGBA u32':
            said = gegl('in.png', 'got.png', ['gegl:convert-format', f'format={kind}', operation(effect)])
            compare(f'{effect} from {kind}', 'got.png', 'expected.png', said)


def space():
    """The samples are worked on as they are, whatever colours they stand for."""
    wide = [31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000]  # white, red, green, blue
    chunks = [(b'gAMA', (45455).to_bytes(4, 'big')), (b'cHRM', b''.join(n.to_bytes(4, 'big') for n in wide))]
    picture.write('wide.png', 'colour', 8, chunks=chunks)
    picture.write('plain.png', 'colour', 8)
    for effect in 'Sandstone', 'Tiles':
        apply(effect, 'plain.png', 'expected.png')
        said = gegl('wide.png', 'got.png', [operation(effect)])
        compare(f'{effect} in a space of its own', 'got.png', 'expected.png', said)


def refusals():
    """What does not fit is said, and makes no picture."""
    picture.write('in.png', 'colour', 8)
    for chain, message in (
            (['cmdtexture:sandstone', 'angle=360'], 'from 0 to 359'),
            (['cmdtexture:sandstone', 'detail=0'], 'from 1 to 256'),
            (['cmdtexture:blinds', 'width=38'], 'from 2 to 37'),
            (['cmdtexture:sculpture', 'pattern-name=nonsense'], 'there is no pattern "nonsense"'),
            (['cmdtexture:texture', 'texture-name=marble'], 'there is no texture "marble"'),
            (['cmdtexture:texture', 'category=nonsense'], 'nonsense'),
            (['gegl:checkerboard', 'cmdtexture:tiles'], 'no edges'),
            (['cmdtexture:fur', 'gegl:crop', 'cmdtexture:weave', 'gap-width=999'], 'from 1 to 37')):
        said = gegl('in.png', 'got.png', chain)
        if message not in said:
            failures.append(f'{chain}: "{message}" is not in {said}')
        if os.path.exists('got.png'):
            failures.append(f'{chain}: there is a picture')


def languages():
    """Texts are the user's: those of `describe` in the language."""
    for locale, code in ('de_DE.UTF-8', 'DE'), ('fr_FR.UTF-8', 'FR'), ('en_GB.UTF-8', 'EN'):
        run = subprocess.run([GEGL, '--info', 'cmdtexture:tiles'], capture_output=True, text=True,
                             errors='replace', env=environment(LC_ALL='', LANG=locale))
        shown = ' '.join(run.stdout.split())
        tiles = described('Tiles', '--language', code)
        for text in tiles['displayName'], *(one['description'] for one in tiles['parameters']):
            if ' '.join(text.split()) not in shown:
                failures.append(f'{code}: "{text}" is not in {shown}')


def installed():
    """Below a prefix the operations find what they need, and without it they say what is missing."""
    prefix = f'{FOLDER}/prefix'
    shutil.rmtree(prefix, ignore_errors=True)
    subprocess.run(['cmake', '--install', BUILD, '--prefix', prefix], check=True, stdout=subprocess.DEVNULL)
    plugins = system_folder().replace('/usr', prefix, 1)
    picture.write('in.png', 'grey', 8)
    chain = ['cmdtexture:sculpture', 'pattern-name=cork', 'size=150']
    apply('Sculpture', 'in.png', 'expected.png', '-p', 'PatternName=cork', '-p', 'Size=150')
    compare('installed', 'got.png', 'expected.png', gegl('in.png', 'got.png', chain, folder=plugins))
    os.remove(f'{prefix}/lib/cmdtexture/CmdTexture.so')
    said = gegl('in.png', 'got.png', chain, folder=plugins)
    if 'there are no operations' not in said or 'CmdTexture.so' not in said:
        failures.append(f'a broken installation: {said}')


shutil.rmtree(FOLDER, ignore_errors=True)
os.makedirs(FOLDER)
os.chdir(FOLDER)
globals().get(CASE, lambda: every_format(CASE))()
print('\n'.join(failures) or f'{CASE}: no difference')
sys.exit(1 if failures else 0)
