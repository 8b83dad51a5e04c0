#!/usr/bin/python3
"""Runs the examples of the documents: examples.py PROGRAM DOCUMENT...

An example is an indented line, or one of a manual page's blocks without filling, that begins with
"cmdtexture". Those of a document run in their order, in a folder with the files that they name and
with a home of their own, and must end with status 0. Lines for other programs, and for clusters, are
for the tests of these: ./check gimp, ./check cluster, and those of the C and Python pages.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from PIL import Image

# What no test without a screen can run; ./check screen does.
NEEDS_A_SCREEN = "cmdtexture edit "


def examples(document):
    text = document.read_text()
    if document.suffix == ".1":
        text = re.sub(r"\\f[BIRP]", "", text).replace(r"\-", "-").replace(r"\(aq", "'")
        blocks = re.findall(r"^\.(?:nf|EX)\n(.*?)^\.(?:fi|EE)$", text, re.S | re.M)
        lines = "\n".join(blocks).splitlines()
    else:
        lines = [line[4:] for line in text.splitlines() if line.startswith("    ")]
    lines = "\n".join(lines).replace("\\\n", " ").splitlines()
    return [line.split("   #")[0] for line in lines if line.startswith("cmdtexture ")]


def prepare(folder):
    small = Image.radial_gradient("L").resize((96, 64)).convert("RGB")
    for name in ("photo.jpg", "photo.png", "photo.tif", "part.png", "cat.png", "cat.jpg",
                 "cat.tif", "huge.tif", "upload.png", "photos/a.jpg", "photos/below/b.png",
                 "scans/c.tif", "scans/below/d.tif"):
        file = folder / name
        file.parent.mkdir(parents=True, exist_ok=True)
        small.save(file)
    small.convert("L").save(folder / "selection.png")
    small.resize((300, 200)).save(folder / "wall.jpg")
    small.save(folder / "scans.tif", save_all=True, append_images=[small.rotate(90)])
    (folder / "short.json").write_text('{"Length": 4}')
    for name in ("old-book.json", "stone.json", "book.json"):
        (folder / name).write_text('[{"effect": "Sandstone"}, {"effect": "Weave", "opacity": 0.5}]')
    row = {"input": "photo.png", "effect": "Fur"}
    (folder / "todo.jsonl").write_text(json.dumps(row) + "\n")


def run(program, document):
    failed = 0
    commands = examples(document)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        prepare(folder)
        (folder / "bin").mkdir()
        (folder / "bin" / "cmdtexture").symlink_to(program)
        environment = dict(os.environ, PATH=f"{folder}/bin:/usr/bin:/bin", HOME=name,
                           XDG_CONFIG_HOME=f"{name}/.config", XDG_DATA_HOME=f"{name}/.local",
                           LC_ALL="C.UTF-8")
        for command in commands:
            if command.startswith(NEEDS_A_SCREEN):
                print(f"{document.name}: for a screen: {command}")
                continue
            # A second example may write what the first has written.
            for file in re.findall(r" -o ([\w./-]+\.\w+)", command):
                (folder / file).unlink(missing_ok=True)
            done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment,
                                  capture_output=True, check=False)
            missing = [file for file in re.findall(r" -o ([\w./-]+\.\w+)", command)
                       if not (folder / file).exists()]
            if done.returncode != 0 or missing:
                failed += 1
                print(f"{document.name}: status {done.returncode}, missing {missing}: {command}")
                print(done.stderr.decode(errors="replace"))
            for made in ("out", "furs"):
                if " gallery " in command and (folder / made).exists():
                    subprocess.run(["rm", "-r", folder / made], check=True)
    print(f"{document.name}: {len(commands)} examples, {failed} failed")
    return failed, len(commands)


results = [run(sys.argv[1], pathlib.Path(name)) for name in sys.argv[2:]]
assert sum(count for _, count in results) > 30, "examples are no longer found"
sys.exit(any(failed for failed, _ in results))
