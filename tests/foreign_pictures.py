#!/usr/bin/env python3
"""Reads pictures that other programs made, and compares their sizes with ImageMagick's.

Usage: foreign_pictures.py LIBRARY FOLDER...
"""
import collections
import ctypes
import pathlib
import subprocess
import sys

LEAST = {".gif": 100, ".png": 100, ".jpg": 25}  # sound pictures of each kind
OK, NO_DOCUMENT, MALFORMED, DIMENSIONS, BAD_ARGUMENT = 0, -5, -30, -31, -99

library, libc = ctypes.CDLL(sys.argv[1]), ctypes.CDLL(None)


def read(path):
    """The status, width and height as the library reads them."""
    stream, kind = ctypes.c_void_p(), ctypes.c_int32()
    height, width, pop = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_int32()
    status = library.OpenFile(bytes(path), 0, ctypes.byref(stream), ctypes.byref(kind))
    if status == OK:
        status = library.GetXmlString(stream, kind, ctypes.create_string_buffer(10241), ctypes.byref(height),
                                      ctypes.byref(width), ctypes.byref(pop))
        libc.fclose(stream)
    return status, width.value, height.value


def identify(path):
    """The width and height as ImageMagick reads them; None where it finds fault with the picture."""
    done = subprocess.run(["identify-im6.q16", "-ping", "-format", "%w %h %W %H\n", path], capture_output=True, text=True)
    if done.returncode or done.stderr:
        return None
    frames = [[int(number) for number in line.split()] for line in done.stdout.splitlines()]
    if path.suffix.lower() != ".gif":
        return tuple(frames[0][:2])
    return tuple(max(max(frame[i], frame[i + 2]) for frame in frames) for i in (0, 1))  # of images and screen


def agrees(path, status, own, size):
    """The differences that are meant: the library's limits, and GIF files without a trailer."""
    if path.stat().st_size > 2097152:
        return status == BAD_ARGUMENT
    if max(size) > 960:
        return status == DIMENSIONS
    if status == MALFORMED and path.suffix.lower() == ".gif":
        return path.read_bytes()[-1:] == b"\0"
    return status in (OK, NO_DOCUMENT) and own == size


def main():
    compared, wrong = collections.Counter(), []
    for folder in sys.argv[2:]:
        for path in sorted(pathlib.Path(folder).rglob("*")):
            kind = path.suffix.lower().replace(".jpeg", ".jpg")
            if kind not in LEAST or not path.is_file():
                continue
            size, (status, *own) = identify(path), read(path)
            if size and agrees(path, status, tuple(own), size):
                compared[kind] += 1
            elif size or status not in (MALFORMED, BAD_ARGUMENT):
                wrong.append(f"{path}: status {status}, size {own}; ImageMagick: {size or 'faulty'}")
    for kind, least in LEAST.items():
        print("PASS" if compared[kind] >= least else "FAIL", f"{compared[kind]} {kind} pictures have ImageMagick's size")
    print("FAIL" if wrong else "PASS", "no picture differs")
    print("".join(f"  {line}\n" for line in wrong), end="")
    return 1 if wrong or any(compared[kind] < least for kind, least in LEAST.items()) else 0


if __name__ == "__main__":
    sys.exit(main())
