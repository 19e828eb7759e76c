#!/usr/bin/env python3
"""Pictures that other programs made: their sizes are ImageMagick's, and a write changes nothing but metadata.

Usage: foreign_pictures.py LIBRARY FOLDER... (samples are welcome, too)
"""
import collections
import ctypes
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile

LEAST = {".gif": 100, ".png": 100, ".jpg": 25}  # sound pictures of each kind
OK, NO_DOCUMENT, MALFORMED, DIMENSIONS, BAD_ARGUMENT = 0, -5, -30, -31, -99
# Readers that know nothing of us, and what makes them find fault.
READERS = {".gif": ["gifsicle", "--no-warnings", "--info"], ".png": ["pngcheck", "-q"], ".jpg": ["djpeg", "-outfile", "/dev/null"]}

library, libc = ctypes.CDLL(sys.argv[1]), ctypes.CDLL(None)


def kind_of(path):
    return path.suffix.lower().replace(".jpeg", ".jpg")


def opened(path):
    stream, kind = ctypes.c_void_p(), ctypes.c_int32()
    return library.OpenFile(bytes(path), 0, ctypes.byref(stream), ctypes.byref(kind)), stream, kind


def read(path):
    """The status, width and height as the library reads them, and the document."""
    height, width, pop = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_int32()
    document = ctypes.create_string_buffer(10241)
    status, stream, kind = opened(path)
    if status == OK:
        status = library.GetXmlString(stream, kind, document, ctypes.byref(height), ctypes.byref(width), ctypes.byref(pop))
        libc.fclose(stream)
    return status, (width.value, height.value), document.value


def write(path, blob):
    """Writes a label and, into GIF and PNG, a blob."""
    record = bytearray(290344)
    record[8:13] = b"smile"
    record[136444:136455], record[136701:136705] = b"EMJfriendly", b"blob"
    record[136958:136958 + len(bytes(blob))] = bytes(blob)
    status, stream, kind = opened(path)
    status = status or library.SetXmlStringToFile(stream, bytes(path), bytes(record), kind)
    libc.fclose(stream)
    return status


def identify(path):
    """The width and height as ImageMagick reads them; None where it finds fault with the picture."""
    done = subprocess.run(["identify-im6.q16", "-ping", "-format", "%w %h %W %H\n", path], capture_output=True, text=True)
    if done.returncode or done.stderr:
        return None
    frames = [[int(number) for number in line.split()] for line in done.stdout.splitlines()]
    if path.suffix.lower() != ".gif":
        return tuple(frames[0][:2])
    return tuple(max(max(frame[i], frame[i + 2]) for frame in frames) for i in (0, 1))  # of images and screen


def refused(path):
    """Whether another reader finds fault with the picture."""
    return subprocess.run(READERS[kind_of(path)] + [path], capture_output=True).returncode != 0


def agrees(path, status, own, size):
    """The differences that are meant: the library's limits, and GIF files without a trailer."""
    if path.stat().st_size > 2097152:
        return status == BAD_ARGUMENT
    if max(size) > 960:
        return status == DIMENSIONS
    if status == MALFORMED:
        return refused(path) or (path.suffix.lower() == ".gif" and path.read_bytes()[-1:] == b"\0")
    return status in (OK, NO_DOCUMENT) and own == size


def blocks(kind, data):
    """A picture's pieces, up to its end."""
    at = {".gif": 13, ".png": 8, ".jpg": 2}[kind]
    if kind == ".gif" and data[10] & 0x80:
        at += 6 << (data[10] & 7)
    yield data[:at]
    while True:
        start = at
        if kind == ".png":
            at += 12 + struct.unpack(">I", data[at:at + 4])[0]
            last = data[start + 4:start + 8] == b"IEND"
        elif kind == ".jpg":
            last = data[at + 1] == 0xDA
            at += 2 + struct.unpack(">H", data[at + 2:at + 4])[0]
            if last:
                at = data.index(b"\xff\xd9", at) + 2
        else:
            last = data[at] == 0x3B
            if data[at] == 0x2C:
                at += 11 + (6 << (data[at + 9] & 7) if data[at + 9] & 0x80 else 0)
            else:
                at += 1 if last else 2 if data[at] == 0x21 else 1
            if data[start] in b"\x21\x2c":
                while data[at]:
                    at += data[at] + 1
                at += 1
        yield data[start:at]
        if last:
            return


def bare(path):
    ours = (b"\x21\xfe", b"<emoji>", 3), (b"\x21\xff\x0bEMJ", b"", 0), (b"\xff\xfe", b"<emoji>", 4)
    chunks = (b"tEXtEmoji\0<emoji>", b"emJe")
    return b"".join(b for b in blocks(kind_of(path), path.read_bytes()) if not b[4:].startswith(chunks) and not any(
        b.startswith(head) and b.startswith(text, at) for head, text, at in ours))


def fault(path, copy, blob):
    """What a write does to a copy of the picture that it should not; None when all is well."""
    shutil.copy(path, copy)
    if status := write(copy, blob):
        return f"write status {status}"
    if bare(copy) != bare(path):
        return "more than metadata changed"
    if read(copy)[2] != b"<emoji><label><name>smile</name></label></emoji>":
        return "document not read back"
    if refused(copy) and not refused(path):
        return "another reader refuses it"
    frames = [subprocess.run(["convert-im6.q16", picture, "rgba:-"], capture_output=True).stdout for picture in (path, copy)]
    return None if frames[0] == frames[1] else "pixels differ"


def main():
    compared, wrong = collections.Counter(), []
    scratch = tempfile.TemporaryDirectory()
    blob = pathlib.Path(scratch.name, "blob")
    blob.write_bytes(bytes(range(256)) * 2)
    for folder in sys.argv[2:]:
        for path in sorted(pathlib.Path(folder).rglob("*")):
            kind = kind_of(path)
            if kind not in LEAST or not path.is_file():
                continue
            size, (status, own, _) = identify(path), read(path)
            if size and agrees(path, status, own, size):
                compared[kind] += 1
                if status in (OK, NO_DOCUMENT) and (why := fault(path, pathlib.Path(scratch.name, "copy" + kind), blob)):
                    wrong.append(f"{path}: {why}")
            elif size or status not in (MALFORMED, BAD_ARGUMENT):
                wrong.append(f"{path}: status {status}, size {own}; ImageMagick: {size or 'faulty'}")
    for kind, least in LEAST.items():
        print("PASS" if compared[kind] >= least else "FAIL", f"{compared[kind]} {kind} pictures have ImageMagick's size")
    print("FAIL" if wrong else "PASS", "no picture differs, before a write and after it")
    print("".join(f"  {line}\n" for line in wrong), end="")
    return 1 if wrong or any(compared[kind] < least for kind, least in LEAST.items()) else 0


if __name__ == "__main__":
    sys.exit(main())
