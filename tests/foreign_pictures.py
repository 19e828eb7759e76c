#!/usr/bin/env python3
"""Reads pictures that other programs made and compares their sizes with ImageMagick's. Usage: foreign_pictures.py LIBRARY"""
import collections
import ctypes
import pathlib
import subprocess
import sys

PER_KIND = 150  # pictures of each kind, spread over what /usr/share has
LEAST = {".gif": 50, ".png": 100, ".jpg": 20}
OK, NO_DOCUMENT, MALFORMED, DIMENSIONS, TOO_LONG, BAD_ARGUMENT = 0, -5, -30, -31, -41, -99

library, libc = ctypes.CDLL(sys.argv[1]), ctypes.CDLL(None)


def read(path):
    """(status, width, height) as the library reads them."""
    stream, kind = ctypes.c_void_p(), ctypes.c_int32()
    height, width, pop = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_int32()
    status = library.OpenFile(bytes(path), 0, ctypes.byref(stream), ctypes.byref(kind))
    if status == OK:
        status = library.GetXmlString(stream, kind, ctypes.create_string_buffer(10241), ctypes.byref(height),
                                      ctypes.byref(width), ctypes.byref(pop))
        libc.fclose(stream)
    return status, width.value, height.value


def identify(path):
    """(width, height), the largest of canvas and frames; None where ImageMagick finds fault with the picture."""
    done = subprocess.run(["identify-im6.q16", "-ping", "-format", "%W %H %w %h\n", path], capture_output=True, text=True)
    numbers = [[int(n) for n in line.split()] for line in done.stdout.splitlines()]
    if done.returncode or done.stderr or not numbers:
        return None
    return max(max(n[0], n[2]) for n in numbers), max(max(n[1], n[3]) for n in numbers)


def expected(path, size):
    """The statuses that a sound picture of this size may have."""
    if path.stat().st_size > 2097152:
        return {BAD_ARGUMENT}
    return {DIMENSIONS} if max(size) > 960 else {OK, NO_DOCUMENT}


def main():
    found = collections.defaultdict(list)
    for path in sorted(pathlib.Path("/usr/share").rglob("*")):
        kind = path.suffix.lower().replace(".jpeg", ".jpg")
        if kind in LEAST and path.is_file():
            found[kind].append(path)
    failures = 0
    for kind, least in LEAST.items():
        paths = found[kind][::max(1, len(found[kind]) // PER_KIND)]
        compared, wrong = 0, []
        for path in paths:
            size = identify(path)
            status, *own = read(path)
            if size is None:
                continue
            compared += 1
            if status not in expected(path, size) or (status in (OK, NO_DOCUMENT) and tuple(own) != size):
                wrong.append(f"{path}: status {status}, {own}; ImageMagick: {size}")
        bad = wrong or compared < least
        failures += bool(bad)
        print("FAIL" if bad else "PASS", f"{compared} of {len(paths)} {kind} pictures compared")
        print("".join(f"  {line}\n" for line in wrong), end="")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
