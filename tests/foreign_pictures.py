#!/usr/bin/env python3
"""Reads pictures of other programs, compares their sizes with ImageMagick's, and checks that a write changes only metadata.

Usage: foreign_pictures.py TOOL FOLDER...
"""
import collections
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

LEAST = {".gif": 100, ".png": 100, ".jpg": 25}  # the number of valid pictures of each kind that must be found
OK, MALFORMED, DIMENSIONS, BAD_ARGUMENT = 0, -30, -31, -99
LABEL, TAG, DATA = 48, 38, bytes(range(256)) * 2
# The bytes that a write adds (a document with a label and, in GIF and PNG, a tag and its blob), and the end of a picture.
ADDED = {".gif": (LABEL + TAG + 4 + len(DATA) + 23, b";"), ".png": (LABEL + TAG + 18 + len(DATA) + 35, b"IEND\xaeB`\x82"),
         ".jpg": (LABEL + 4, b"\xff\xd9")}
# Other readers, with the options by which they report faulty pictures.
READERS = {".gif": ["gifsicle", "--no-warnings", "--info"], ".png": ["pngcheck", "-q"], ".jpg": ["djpeg", "-outfile", "/dev/null"]}

def kind_of(path):
    return path.suffix.lower().replace(".jpeg", ".jpg")


def run(*words):
    return subprocess.run([sys.argv[1], *words], capture_output=True, text=True)


def read(path):
    """The status and, if the picture can be read, its JSON object."""
    done = run("show", "--json", path)
    return (int(re.search(r"\((-\d+)\)", done.stderr)[1]), None) if done.returncode else (OK, json.loads(done.stdout)[0])


def identify(path):
    """The width and height as ImageMagick reads them; None if it reports a fault."""
    done = subprocess.run(["identify-im6.q16", "-ping", "-format", "%w %h %W %H\n", path], capture_output=True, text=True)
    if done.returncode or done.stderr:
        return None
    frames = [[int(number) for number in line.split()] for line in done.stdout.splitlines()]
    if path.suffix.lower() != ".gif":
        return tuple(frames[0][:2])
    return tuple(max(max(frame[i], frame[i + 2]) for frame in frames) for i in (0, 1))  # of images and screen


def refused(path):
    """Whether another reader refuses the picture."""
    return subprocess.run(READERS[kind_of(path)] + [path], capture_output=True).returncode != 0


def agrees(path, status, shown, size):
    """Whether the result is ImageMagick's. Intended differences: the library's limits, and GIF files without a trailer."""
    if path.stat().st_size > 2097152:
        return status == BAD_ARGUMENT
    if max(size) > 960:
        return status == DIMENSIONS
    if status == MALFORMED:
        return refused(path) or (path.suffix.lower() == ".gif" and path.read_bytes()[-1:] == b"\0")
    return status == OK and (shown["width"], shown["height"]) == size


def differs_elsewhere(old, new, kind):
    """Whether a write changed more than it should: it may only insert bytes, and drop bytes after the picture's end."""
    length, end = ADDED[kind]
    start = len(os.path.commonprefix([old, new]))
    rest = new[:start] + new[start + length:]
    return not old.startswith(rest) or not rest.endswith(end)


def fault(path, shown, copy, blob):
    """Writes to a copy of the picture. Returns a description of the fault; None when there is none."""
    shutil.copy(path, copy)
    embedded = [] if copy.suffix == ".jpg" else ["--embed", f"EMJfriendly:t={blob}"]
    if (done := run("set", "--replace", "--force", "--label", "smile", *embedded, copy)).returncode:
        return done.stderr
    plain = not any(shown[member] for member in ("labels", "category", "type", "tags", "blobs"))
    if plain and differs_elsewhere(path.read_bytes(), copy.read_bytes(), copy.suffix):
        return "more than metadata changed"
    if [label["name"] for label in read(copy)[1]["labels"]] != ["smile"]:
        return "label not read back"
    if refused(copy) and not refused(path):
        return "another reader refuses it"
    frames = [subprocess.run(["convert-im6.q16", picture, "rgba:-"], capture_output=True).stdout for picture in (path, copy)]
    return None if frames[0] == frames[1] else "pixels differ"


def main():
    compared, wrong = collections.Counter(), []
    scratch = tempfile.TemporaryDirectory()
    blob = pathlib.Path(scratch.name, "blob")
    blob.write_bytes(DATA)
    for folder in sys.argv[2:]:
        for path in sorted(pathlib.Path(folder).rglob("*")):
            kind = kind_of(path)
            if kind not in LEAST or not path.is_file():
                continue
            size, (status, shown) = identify(path), read(path)
            if size and agrees(path, status, shown, size):
                compared[kind] += 1
                if status == OK and (why := fault(path, shown, pathlib.Path(scratch.name, "copy" + kind), blob)):
                    wrong.append(f"{path}: {why}")
            elif size or status not in (MALFORMED, BAD_ARGUMENT):
                wrong.append(f"{path}: status {status}, {shown}; ImageMagick: {size or 'faulty'}")
    for kind, least in LEAST.items():
        print("PASS" if compared[kind] >= least else "FAIL", f"{compared[kind]} {kind} pictures have ImageMagick's size")
    print("FAIL" if wrong else "PASS", "no picture differs before or after a write")
    print("".join(f"  {line}\n" for line in wrong), end="")
    return 1 if wrong or any(compared[kind] < least for kind, least in LEAST.items()) else 0


if __name__ == "__main__":
    sys.exit(main())
