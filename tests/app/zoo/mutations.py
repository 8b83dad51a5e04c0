"""mutations.py PROGRAM [COUNT] [SEED] [PATTERN]: damages pictures of the zoo, always the same way, and has a
second decoder judge those that the program takes without a word. What the second decoder finds
damaged must not pass; whole pictures must not be refused."""
import concurrent.futures
import os
import random
import re
import subprocess
import sys
import tempfile

import zoo

# The program's words when it is right to take a file that something is wrong with.
TOLD = re.compile(r'^cmdtexture: warning: ', re.M)


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, errors='replace', timeout=120)
    return done.returncode, done.stdout + done.stderr


def judged_damaged(path, kind, folder):
    """What a decoder of another make says of the file; empty when it finds nothing."""
    if kind == 'png':
        code, out = run('pngcheck', '-q', path)
        # Values that are carried as they are, and chunks it does not know.
        harmless = re.search('cICP|iTXt|tEXt|zTXt|keyword|eXIf|additional data after IEND|private', out)
        return out if code and not harmless else ''
    if kind == 'jpg':
        out = run('djpeg', '-outfile', os.devnull, path)[1]
        return out if re.search('orrupt|remature|nvalid|nsupported|ogus', out) else ''
    if kind == 'webp':
        code, out = run('dwebp', '-quiet', path, '-o', os.path.join(folder, 'x.ppm'))
        return out if code else ''
    code, out = run('tiffcp', '-c', 'none', path, os.path.join(folder, 'x.tif'))
    return out if code else ''


def mutate(data, chance):
    """One to three changes: bytes, cuts, blocks moved, lengths."""
    data = bytearray(data)
    for _ in range(chance.choice((1, 1, 1, 2, 3))):
        at = chance.randrange(len(data))
        kind = chance.randrange(6)
        if kind == 0:
            data[at] ^= 1 << chance.randrange(8)
        elif kind == 1:
            data[at] = chance.choice((0, 0xff, 0x7f, 0x80, data[at] + 1 & 0xff))
        elif kind == 2 and at > 16:
            del data[at:]
        elif kind == 3:
            del data[at:at + chance.randrange(1, 20)]
        elif kind == 4:
            data[at:at] = bytes(chance.randrange(256) for _ in range(chance.randrange(1, 20)))
        else:
            other = chance.randrange(len(data))
            data[at:at + 8] = data[other:other + 8]
        if len(data) < 16:
            break
    return bytes(data)


def main():
    program = os.path.abspath(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 300
    chance = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 11)
    pattern = sys.argv[4] if len(sys.argv) > 4 else ''
    pictures = sorted((n, b) for n, b in zoo.Zoo().items() if re.search(pattern, n))
    problems, codes = [], {}
    with tempfile.TemporaryDirectory() as folder:
        jobs = [(number, *chance.choice(pictures)) for number in range(count)]
        jobs = [(number, name, mutate(data, chance)) for number, name, data in jobs]

        def try_one(job):
            number, name, data = job
            own = os.path.join(folder, str(number))
            os.mkdir(own)
            kind = name.rsplit('.', 1)[1]
            path, target = os.path.join(own, 'in.' + kind), os.path.join(own, 'out.png')
            with open(path, 'wb') as file:
                file.write(data)
            try:
                code, out = run(program, 'apply', 'Blinds', path, '-o', target, '--quiet')
            except subprocess.TimeoutExpired:
                return name, data, -1, 'hangs'
            left = set(os.listdir(own)) - {'in.' + kind, 'out.png'}
            if code not in (0, 3, 4, 6):
                return name, data, code, 'exit %d: %s' % (code, out.strip())
            if left or (code != 0) == os.path.exists(target):
                return name, data, code, 'exit %d, and there is %s' % (code, os.listdir(own))
            word = judged_damaged(path, kind, own) if code == 0 and not TOLD.search(out) else ''
            return name, data, code, word and 'taken, though: ' + word.strip()
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for number, (name, data, code, problem) in enumerate(pool.map(try_one, jobs)):
                codes[code] = codes.get(code, 0) + 1
                if problem:
                    problems.append('%d, of %s: %s' % (number, name, problem))
                    if 'MUTATIONS_KEEP' in os.environ:
                        kept = os.path.join(os.environ['MUTATIONS_KEEP'], '%d-%s' % (number, name))
                        with open(kept, 'wb') as file:
                            file.write(data)
    for problem in problems:
        print(problem)
    print('%d mutations, by exit status %s: %d problems' % (count, sorted(codes.items()), len(problems)))
    return 1 if problems or codes.get(0, 0) == 0 or codes.get(3, 0) == 0 else 0


if __name__ == '__main__':
    sys.exit(main())
