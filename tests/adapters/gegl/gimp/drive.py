"""drive.py FOLDER PROGRAM: opens the tool for GEGL operations of a running GIMP, sets values in its dialog
with the mouse and the keyboard, exports, and compares with what PROGRAM makes of the same values. The
accessibility tree tells where things lie; what is done to them is done with the mouse and the keys
of the screen."""
import os
import subprocess
import sys
import time

import pyatspi

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..'))
import picture  # noqa: E402

FOLDER, PROGRAM = sys.argv[1:]
PHOTO = f'{FOLDER}/photo.png'

# Effect, values as the program takes them, and what is done in the dialog: the number of the slider
# with a place typed, an entry of the list with a place clicked, a check box clicked, a colour typed.
CASES = (
    ('Sandstone', {'Angle': '30', 'Detail': '120', 'Color': '#FFCC88'},
     (('slider', 0, '30'), ('slider', 2, '120'), ('colour', 0, 'ffcc88'))),
    ('Tiles', {'TileShape': 'squares', 'TileSize': '24'},
     (('list', -1, 'squares'), ('slider', -1, '24'))),
    ('Sculpture', {'PatternName': 'oak', 'Depth': '40'},
     (('list', -1, 'oak'), ('slider', 2, '40'))),
    ('Weave', {'FillGaps': 'false', 'WeaveWidth': '20', 'GapWidth': '6'},
     (('check', 0, ''), ('slider', 0, '20'), ('slider', 1, '6'))),
)
TOOL = 'GEGL Operation'


def run(*command):
    subprocess.run(command, check=True, timeout=60)


def keys(*names):
    for name in names:
        run('xdotool', 'key', name)
        time.sleep(0.2)


def type_text(text):
    run('xdotool', 'type', '--delay', '40', text)
    time.sleep(0.3)


def shot(name):
    run('import', '-window', 'root', f'{FOLDER}/{name}.png')


def box_of(thing):
    """Where it lies on the screen; None when it is not to be seen."""
    try:
        box = thing.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        if box.width > 1 and box.x > -10000:
            return box
    except (LookupError, NotImplementedError, RuntimeError):
        pass
    return None


def things(below, role):
    yield below
    if below.getRoleName() == 'menu' and role != 'menu item':
        return
    for i in range(below.childCount):
        child = below[i]
        if child is not None:
            yield from things(child, role)


def windows():
    for application in pyatspi.Registry.getDesktop(0):
        if application is not None:
            yield from (window for window in application if window is not None)


def found(role, name, window):
    """What is on the screen in a window whose title has this, from top to bottom."""
    for one in windows():
        if window in one.name:
            for thing in things(one, role):
                if thing.getRoleName() == role and name in (None, thing.name) and box_of(thing):
                    yield thing


def find(role, name=None, window='GIMP', place=0, seconds=60):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        all_found = list(found(role, name, window))
        if -len(all_found) <= place < len(all_found):
            return all_found[place]
        time.sleep(0.3)
    shot('failed')
    sys.exit(f'there is no {role} "{name or place}" in {window} (failed.png)')


def click(thing, right=None):
    """In its middle, or some pixels from its right edge."""
    box = box_of(thing)
    x = box.x + (box.width - right if right else box.width // 2)
    run('xdotool', 'mousemove', str(x), str(box.y + box.height // 2))
    time.sleep(0.2)
    run('xdotool', 'click', '1')
    time.sleep(0.6)


def gone(title, seconds=120):
    end = time.monotonic() + seconds
    while any(title in window.name for window in windows()):
        if time.monotonic() > end:
            shot('failed')
            sys.exit(f'the window {title} stays (failed.png)')
        time.sleep(0.3)


def choose(entry):
    """Clicks an entry of the list or menu that has just been opened."""
    click(find('menu item', entry, ''))


def set_value(how, place, value):
    if how == 'slider':
        # Where the number stands, left of the arrows.
        click(find('spin button', None, TOOL, place), right=30)
        keys('ctrl+a')
        type_text(value + '\n')
    elif how == 'check':
        click(find('check box', None, TOOL, place))
    elif how == 'list':
        click(find('combo box', None, TOOL, place))
        choose(value)
    else:
        click([one for one in found('push button', '', TOOL) if box_of(one).width > 100][place])
        find('push button', 'OK', 'Light colour')
        click(find('text', None, 'Light colour', -1))
        keys('ctrl+a')
        type_text(value + '\n')
        shot('colour')
        click(find('push button', 'OK', 'Light colour'))
        gone('Light colour')


def apply_in_gimp(effect, done):
    click(find('menu', 'Tools'))
    choose('GEGL Operation...')
    find('combo box', None, TOOL)
    # Beside the picture, so that the screenshots show both.
    run('xdotool', 'search', '--name', TOOL, 'windowmove', '500', '900')
    time.sleep(0.5)
    click(find('combo box', None, TOOL))
    shot(f'{effect}-list')
    offered = [one.name for one in found('menu item', None, TOOL) if one.name.startswith('cmdtexture:')]
    if len(offered) != 14:
        sys.exit(f'GIMP lists {len(offered)} of 14 operations: {offered}')
    choose(f'cmdtexture:{effect.lower()}')
    time.sleep(1.5)
    for step in done:
        set_value(*step)
    time.sleep(4)
    shot(effect)
    click(find('push button', 'OK', TOOL))
    gone(TOOL)


def export(file):
    keys('ctrl+shift+e')
    find('push button', 'Export', 'Export Image')
    keys('ctrl+a')
    type_text(file)
    click(find('push button', 'Export', 'Export Image'))
    click(find('push button', 'Export', 'Export Image as PNG'))
    gone('Export Image as PNG')
    gone('Export Image')


def compare(effect, values):
    gimp, expected = f'{FOLDER}/{effect}-gimp.png', f'{FOLDER}/{effect}-apply.png'
    options = [word for name, value in values.items() for word in ('-p', f'{name}={value}')]
    run(PROGRAM, 'apply', effect, PHOTO, '-o', expected, '--quiet', '--overwrite', *options)
    equal = picture.read(gimp) == picture.read(expected)
    print(effect, *options, 'equal' if equal else 'DIFFERENT', flush=True)
    return equal


if __name__ == '__main__':
    find('menu', 'Tools', seconds=400)
    wrong = 0
    for effect, values, done in CASES:
        apply_in_gimp(effect, done)
        export(f'{FOLDER}/{effect}-gimp.png')
        wrong += not compare(effect, values)
        keys('ctrl+z')
        time.sleep(1)
    sys.exit(wrong > 0)
