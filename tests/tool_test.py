#!/usr/bin/env python3
"""The command line tool from end to end, on copies of the samples: tests/tool_test.py [PROGRAM [--fail-fast]]"""
import contextlib
import fcntl
import json
import os
import pathlib
import pty
import re
import resource
import shlex
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOOL = str(pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release/lumigram").resolve())
counts = {"PASS": 0, "FAIL": 0}


def report(name, *faults):
    outcome = "FAIL" if any(faults) else "PASS"
    counts[outcome] += 1
    print(outcome, name, *(f"\n    {fault}" for fault in faults if fault))
    if outcome == "FAIL" and "--fail-fast" in sys.argv:
        sys.exit(1)


def run(command, stdin=""):
    words = shlex.split(command) if isinstance(command, str) else command
    done = subprocess.run([TOOL, *words], input=stdin.encode(), capture_output=True, timeout=60)
    return done.returncode, done.stdout.decode(errors="replace"), done.stderr.decode(errors="replace")


def screen(control, terminal):
    """What else a terminal shows, whose programs have ended."""
    os.close(terminal)
    shown = b""
    with contextlib.suppress(OSError):  # at the end
        while True:
            shown += os.read(control, 4096)
    os.close(control)
    return shown.decode()


def on_terminal(command, **env):
    control, terminal = pty.openpty()
    subprocess.run([TOOL, *shlex.split(command)], stdout=terminal, env={"PATH": os.environ["PATH"], **env}, stderr=subprocess.DEVNULL)
    return screen(control, terminal)


def contents():
    return {path.name: path.read_bytes() for path in pathlib.Path().iterdir() if path.is_file()}


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def blob(label, name):
    return chunk(b"emJe", label.ljust(11, b"\0") + struct.pack(">I", len(name)) + name + struct.pack(">I4s", 4, b"data"))


def png(body, *chunks, tail=b""):
    """The plain sample with a document of this content, valid or not, and with further chunks."""
    plain = (ROOT / "samples/plain.png").read_bytes()
    image = plain.index(b"IDAT") - 4
    body = body.encode() if isinstance(body, str) else body
    document = chunk(b"tEXt", b"Emoji\0<emoji>" + body + b"</emoji>")
    return plain[:image] + document + b"".join(chunks) + plain[image:] + tail


def label(name, more=""):
    return f"<label><name>{name}</name>{more}</label>"


def tags(*elements):
    return "".join(f'<tags name="{name}">{content}</tags>' for name, content in elements)


def invalid(text):
    """The plain sample with this document, in which every ? is a byte that belongs to no character."""
    return png(text.encode().replace(b"?", b"\xff"))


FULL = png("", chunk(b"prVt", bytes(2**21 - len(png("")) - 12)))

# The picture, what `check` prints about it, and its labels and tags after a rewrite with --force; None: not looked at.
LOSING = {
    "nameless label": (png("<label><note>n</note></label>" + tags(("a", "b"))), [], ["a"], "not read: label 1 has no name: no label is read (-40)",
                       'not read: label 1 "" has an empty name (it is not written) (-40)'),
    "long name": (png(label("n" * 25) + tags(("a", "b"))), [], ["a"],
                  f'not read: the name of label 1 "{"n" * 25}" has 25 characters; the limit is 24 (no label is read) (-42)'),
    "long note": (png(label("n", f"<note>{'é' * 25}</note>")), [], [],
                  'not read: the note of label 1 "n" has 25 characters; the limit is 24 (no label is read) (-42)'),
    "long part": (png(label("n", f"<part>{'p' * 257}</part>")), [], [],
                  'not read: the part of speech of label 1 "n" has 257 bytes; the limit is 256 (no label is read) (-41)',
                  f'not read: the part of speech of label 1 "n" is unknown: "{"p" * 40}..." (-40)'),
    "long texts": (png(label("😀" * 65) + f"<category>{'c' * 257}</category><type>{'t' * 257}</type>"), [], [],
                   *(f'not read: the name of label 1 "{"😀" * 10}..." has {what} (no label is read) {code}' for what, code in
                     (("260 bytes; the limit is 256", "(-41)"), ("65 characters; the limit is 24", "(-42)"))),
                   *(f"not read: the {what} has 257 bytes; the limit is 256 (it is not read) (-41)" for what in ("category", "type"))),
    "longest texts": (png(label("n" * 24, f"<note>{'o' * 24}</note>") + f"<category>{'c' * 256}</category>" + tags(("t" * 24, "c" * 1024))), ["n" * 24], ["t" * 24]),
    "second texts": (png(label("n", "<note>a</note><note>b</note>") + "<category>a</category><category>b</category><type/>"), ["n"], [],
                     'not read: label 1 has a second name, note or part: "b" (-41)', 'not read: there is a second category: "b" (-41)',
                     'not read: text between the elements: "<type/>" (-41)'),
    "texts outside": (png(label("n", " x ") + "</emoji> y "), ["n"], [], 'not read: text after </emoji>: " y </emoji>" (-41)', 'not read: text in label 1: " x " (-41)'),
    "no end": (png(label("n") + "\0x"), [], [], "not read: the document has no end tag: its labels are not read (-40)",
               "not read: the document continues after a NUL (-41)"),
    "further document": (png(label("n"), chunk(b"tEXt", b"Emoji\0<emoji></emoji>")), ["n"], [], "not read: there are further documents, which are not read (-41)"),
    "eleventh label": (png("".join(map(label, "abcdefghijk"))), [*"abcdefghij"], [], 'not read: label 11 "k" is not read: the limit is 10 labels (-40)'),
    "unknown part": (png(label("n", "<part>verb</part>")), ["n"], [], 'not read: the part of speech of label 1 "n" is unknown: "verb" (-40)'),
    "text between": (png(label("n") + "<icon>x</icon>"), ["n"], [], 'not read: text between the elements: "<icon>x</icon>" (-41)'),
    "long content": (png(label("n") + tags(("a", "b"), ("t", "c" * 1025))), ["n"], [],
                     'not read: the content of tag "t" has 1025 bytes; the limit is 1024 (no tag of the picture is read) (-41)'),
    "long tag name": (png(tags(("x" * 25, "b"))), [], [], f'not read: the name of tag "{"x" * 25}" has 25 characters; the limit is 24 (no tag of the picture is read) (-42)'),
    "open tag name": (png('<tags name="x>y</tags>'), [], [], "not read: the name of a tag has no end: no tag is read (-41)"),
    "empty tag name": (png(tags(("", "b"), ("c", "d"))), [], ["c"], "not read: a tag has an empty name (it is not written) (-41)"),
    "eleventh name": (png(tags(*[(n, "c") for n in "abcdefghijk"])), [], [*"abcdefghij"], 'not read: tag "k" with "c" is not read: the limit is 10 names (-41)'),
    "eleventh of a name": (png(tags(*[("a", "c")] * 11)), [], ["a"] * 10, 'not read: tag "a" with "c" is not read: the limit is 10 tags of one name (-41)'),
    "101 tags": (png(tags(*[(f"{i // 10}", "c") for i in range(101)])), [], None, "not read: there are over 100 tags: only the first 100 are read (-41)"),
    "empty first content": (png(tags(("a", ""), ("b", "c"))), [], ["b"], "not read: the content of the first tag is empty: no content is read with the picture (-41)"),
    "no text": (invalid(label("n?", "<note>?</note><part>?</part>") + "<category>?</category><type>?</type>" + tags(("t?", "?"))), ["n\ufffd"], ["t\ufffd"],
                *(f"not read: the {what} is not valid text (-99)" for what in
                  ("name of label 1", "note of label 1", "part of speech of label 1", "category", "type", "name of tag 1", "content of tag 1")),
                'not read: the part of speech of label 1 "n\\xff" is unknown: "\\xff" (-40)', 'note: tag "t\\xff" has a spelling that Java does not look up'),
    "markup": (png(label("n") + tags(("a", label("hidden")))), ["n"], None, "not read: a text contains markup and is read differently (-41)"),
    "blob without a tag": (png(label("n"), blob(b"EMJ", b"lost")), ["n"], [], 'not read: no tag refers to blob "lost" (-99)'),
    "damaged blob": (png(label("n"), chunk(b"emJe", b"EMJ".ljust(11, b"\0") + struct.pack(">IcI", 1, b"x", 9))), ["n"], [], "not read: a blob has wrong lengths: it is not read (-99)"),
    "foreign blob": (png(label("n"), blob(b"XYZ", b"lost")), ["n"], [], "not kept: a blob's label does not begin with EMJ: rewriting drops it (-99)"),
    "tail": (png(label("n"), tail=b"behind"), ["n"], [], "not kept: 6 bytes follow the end of the picture: rewriting drops them (-30)"),
    "empty content": (png(tags(("a", "b"), ("c", ""))), [], ["a", "c"], 'note: a tag "c" is empty: a lookup of that name stops there'),
    "group of a longer name": (png(tags(("ab", "1"), ("a", "2"))), [], ["ab", "a"], 'note: tag "a" is read as part of the group "ab": its own name is not listed'),
    "other spelling": (png(tags(("s😀", "file://THIS/😀")), blob(b"EMJ", "😀".encode())), [], ["s😀"], 'note: blob "😀" has a spelling that Java does not find',
                       'note: tag "s😀" has a spelling that Java does not look up'),
}

# ---- commands: exit status, and texts in the output or, after "!", in the errors ----------------------

FROM = "set --from -"
COMMANDS = [
    ("", 2, "!lumigram: a command is missing; see lumigram --help\n"),
    ("frob smile.gif", 2, '!lumigram: "frob" is not a command; see lumigram --help\n'),
    ("show -dash.png", 2, '!lumigram: show: "-dash.png" is not an option; ./ in front makes it a path\n'),
    ("set --labl x star.png", 2, '!lumigram: set: "--labl" is not expected here; see lumigram help set\n'),
    ("show '--\x1b[31m'", 2, '!"--\\u{1b}[31m" is not'),
    ("show", 2, "!lumigram: show: PATHS is required\n"),
    ("set --category", 2, "!lumigram: set: --category: 1 required TEXT missing\n"),
    ("set star.png", 2, "!lumigram: set: nothing to change\n"),
    ("set --category c", 2, "!lumigram: set: PATHS are missing\n"),
    ("set --backup=a/b --category c star.png", 2, "!a suffix must not contain a slash\n"),
    ("tag mood=happy wink.gif", 2, '!lumigram: tag: "mood=happy" is not a tag'),
    ("help", 0, "Usage: lumigram [OPTIONS] SUBCOMMAND\n", "\n  extract "),
    ("help tag", 0, "Usage: lumigram tag [OPTIONS] NAME PATHS\n"),
    ("help frob", 2, '!lumigram: help: "frob" is not a command\n'),
    ("show --json cut.png large.png", 1, "[\n]\n", "!large.png: over 2 MiB (-99)\n"),
    ("show --json nameless.jpg", 0, '[\n{\n  "path": "nameless.jpg",\n', '  "findings": []\n}\n]\n'),
    ("set --category c full.png", 1, "!full.png: the picture would be over 2 MiB (-42)\n"),
    ("extract EMJ nope smile.gif", 1, '!smile.gif: no blob "nope" labelled "EMJ" (-99)\n'),
    ("show wink.gif", 0, "wink.gif\tpicture\tGIF\t64x64\t1354 bytes\nwink.gif\tlabel\twink\t😉\tverbal-noun\n"),
    ("show smile.gif link.gif", 0, "\tpop\n", "\tblob\tEMJMOTION\tmotion.json\t620 bytes\n"),
    ("show cut.png wide.png fake.gif plain.png", 1, "!fake.gif: holds a PNG picture; rename it to .png (-31)\n",
     "plain.png\tpicture", "!cut.png: damaged or truncated picture (-30)\n", "!wide.png: picture over 960 pixels (-31)\n"),
    ("show nope.png README.md fifo.png empty.gif .", 1, "!nope.png: no such file (-20)\n", "!fifo.png: not a regular file (-20)\n", "!empty.gif: empty file (-99)\n",
     "!.: a folder; use -r for the pictures in it (-20)\n"),
    ("find --type anime -r cut.png [sub]", 2, "[sub]/w.gif\n", "!cut.png: damaged or truncated picture (-30)\n"),
    ("find -0 --label [ --note '' wink.gif", 1),
    ("find -0 wink.gif star.png", 0, "wink.gif\0star.png\0"),
    ("copy smile.gif sun.jpg", 1, "!sun.jpg: a JPEG picture carries no blobs; --without-blobs copies the rest (-99)\n"),
    ("copy wink.gif star.png", 1, "!star.png: has other metadata of its own; --force replaces them (-99)\n"),
    ("copy cut.png plain.png", 1, "!plain.png: cut.png: damaged or truncated picture (-30)\n"),
    ("copy -n wink.gif plain.png", 0, "+\tlabel\twink\t😉\tverbal-noun\n", "1 would be written\n"),
    ("copy -r [sub] star.png", 2, '!lumigram: copy: "star.png" is not a folder\n'),
    ("tag color smile.gif star.png", 0, "smile.gif\t黄色\nstar.png\tvalue 0\n"),
    ("tag color smile.gif", 0, "yellow\n黄色\n"),
    ("show -r [sub]", 0, "\ttag\tcolor\tgold\n[sub]/a.gif\tpicture", "\n[sub]/deep/sun.jpg\tpicture", "\n[sub]/w.gif\tpicture"),
    ("check [sub] -r wink.gif", 0, "5 fine\n"),
    ("check hard.png star.png", 0, "2 fine\n"),
    ("check -r nope [sub]/deep", 1, "1 fine, 1 failed\n", "!nope: no such file (-20)\n"),
    ("set -n -r --category k [sub] [sub]/deep [sub] wink.gif [sub]/CLASSIC.GIF", 0, "3 would be written\n"),
    ("set -n -r --category k wink.gif [sub]/deep/sun.jpg [sub]/deep [sub]", 0, "3 would be written\n"),
    ("set --category k hard.png star.png", 0, "1 written\n"),
    ("clear -n [sub]/.lumigram-abcdefgh.gif", 1, "!a temporary file of a picture that is being replaced (-20)\n"),
    ("set -n --category= --label 'smile 😀:a\\:b' --label 笑う::15 --label '[new]:n:1' --tag color=red smile.gif", 0,
     "-\tcategory\tface\n", "-\tlabel\tsmile 😀\ta friendly face\tnoun\n", "+\tlabel\tsmile 😀\ta:b\tnoun\n",
     "+\tlabel\t[new]\tn\tnoun\n", "-\ttag\tcolor\t黄色\n", "+\ttag\tcolor\tred\n", "1 would be written\n"),
    ("set --category face --tag mood='happy 🎉' smile.gif ./smile.gif link.gif", 0, "0 written, 1 unchanged\n"),
    ("set --embed EMJX:motion=out.bin heart.png sun.jpg", 1, "1 written, 1 failed\n", "!sun.jpg: a JPEG picture carries"),
    ("set --embed EMJX:color=[sub]/boing.mid heart.png", 1, '!two blobs would have the name "boing.mid" (-50)\n'),
    ("set --embed EMJX:a=out.bin --embed EMJX:b=out.bin plain.png", 1, '!two blobs would have the name "out.bin" (-50)\n'),
    ("set --tag eleven=x star.png", 1, '!star.png: tag "eleven" with "x" is not read: the limit is 10 names (-41)\n'),
    ("set --tag 'a=<label>' --category new wink.gif", 1, "!wink.gif: the content of tag 1 holds <label>, which is markup of the document (-41)\n"),
    ("set --backup --category c classic.gif", 1, '!classic.gif: the backup "classic.gif~": File exists (-99)\n'),
    ("set --replace --label only smile.gif plain.png", 0, "2 written\n"),
    ("clear smile.gif heart.png plain.png", 0, "2 written, 1 unchanged\n"),
    ("extract EMJ smile.gif", 2, "!lumigram: extract: expected LABEL NAME PICTURE, or --all -d FOLDER PICTURES\n"),
    ("extract --all smile.gif", 2, "!lumigram: extract: --all needs -d FOLDER\n"),
    ("extract --all -d star.png smile.gif", 2, '!lumigram: extract: -d "star.png": Not a directory\n'),
    ("extract EMJ boing.mid smile.gif -o link.gif", 1, "!link.gif: is the picture that the blob is taken from (-99)\n"),
    ("extract EMJ boing.mid smile.gif -o /dev/full", 1, "!/dev/full: No space left on device (-99)\n"),
    ("extract EMJ boing.mid smile.gif -o none/x", 1, "!none/x: No such file or directory (-99)\n"),
    ("extract EMJ boing.mid smile.gif -o /dev/stdout", 0, "MThd"),
    ("set --tag s=file://THIS/no.mid smile.gif sun.jpg", 1, '!smile.gif: tag 6: the blob "no.mid" is not in the picture (-99)\n', "2 failed\n"),
    ("set --embed EMJX:a=out.bin --tag b=file://THIS/out plain.png", 0, "1 written\n"),
    ("set -n --remove-label nope --remove-label 笑う --rename-label 'smile 😀=a\\=b' --remove-tag mood smile.gif", 0, "-\tlabel\t笑う",
     "-\tlabel\tsmile 😀\ta friendly face", "+\tlabel\ta=b\ta friendly face", "-\ttag\tmood\thappy 🎉\n", "1 would"),
    ("set --rename-label nope=new --rename-label new=newer star.png", 0, "0 written, 1 unchanged\n"),
    ("set --rename-label sparkle=きらきら --category c star.png", 1, '!star.png: there is a label "きらきら" already (-40)\n'),
    ("set --rename-label a=b=c star.png", 2, '!lumigram: --rename-label "a=b=c": expected OLD=NEW, with \\= for an equals sign\n'),
    ("set --rename-label =b star.png", 2, "!expected OLD=NEW"), ("set --rename-label a= star.png", 2, "!expected OLD=NEW"),
    ("set --rename-label a star.png", 2, "!expected OLD=NEW"), ("show --blobs star.png", 2, "!--json"),
    (FROM + " sun.jpg", 1, '{"blobs": [{"label": "EMJ", "name": "b", "bytes": "AAAA"}]}', "!sun.jpg: a JPEG picture carries no blobs (-99)\n"),
    (FROM + " plain.png", 0, json.dumps({"blobs": [{"label": label, "name": name, "bytes": data} for label, name, data in (
        ("XYZ", "b", "AAAA"), ("EMJ", "n", ""), ("EMJ456789012", "l", "AAAA"), ("EMJ", "", "AAAA"), ("EMJ", "x" * 256, "AAAA"))]}),
     'plain.png: note: blob "b" is left out: its label does not begin with EMJ, or its name or its size cannot be written\n', 'blob "n" is left', 'blob "l" is left',
     'blob "" is left', 'blob "xx', "1 unchanged\n"),
    (FROM + " plain.png", 0, '{"findings": [{"a": [{"b": 1}, 2]}, []], "width": {"labels": [3]}, "size": [[]], "pop": null}', "0 written, 1 unchanged\n"),
    (FROM + " -n plain.png", 0, '{"labels": [{"name": "a", "part": 1}, {"name": "b", "part": "verb"}, {"name": "c", "partBase64": "5ZCN6Kme"}], "category": "d", "type": "e"}',
     "+\tlabel\ta\t\tnoun\n", "+\tlabel\tb\t\tverb\n", "+\tlabel\tc\t\tnoun\n", "+\tcategory\td\n", "+\ttype\te\n"),
    (FROM + " -n heart.png", 0, '{"tags": [], "blobs": [{"label": "EMJ", "name": "n", "bytes": "AAAA"}]}', "-\tblob", "+\tblob\tEMJ\tn\t3 bytes\n"),
    ("set --label a:b:22 star.png", 2, '!not "22"\n'),
    (f"set --label {'😀' * 13} star.png", 2, "!has 26 characters; the limit is 24"),
    ("set --embed EMJ456789012:t=out.bin star.png", 2, "!a blob's label must begin with EMJ and have at most 11 bytes\n"),
    ("set --label 'a</name>' star.png", 2, "!the name of label 1 holds </name>, which is markup of the document\n"),
    (FROM + " plain.png star.png", 0, '{"tags": [{"name": "n", "label": "EMJ1", "file": "out.bin"}]}', "2 written\n"),
]


# JSON that is refused before anything is done, and why.
EACH = "expected each picture once, found "
KNOWN = "path, category, type, labels, tags, blobs, format, width, height, pop, size, findings"
REFUSED = [
    ("", "line 1, column 1: syntax error while parsing value - unexpected end of input"),
    ('\n [{"path": "star.png"}\n, ]', "line 3, column 3: syntax error while parsing value - unexpected ']'"),
    ('[{"path": "star.png"}', "line 1, column 22: expected a comma or the end of the array, found the end of the file\n"),
    ('[{"path": "star.png"} {}]', 'line 1, column 23: expected a comma or the end of the array, found "{"\n'),
    ('[{"path": "star.png"}] ]', 'line 1, column 24: expected the end of the file, found "]"\n'),
    ('{"path": "star.png"}\0', 'line 1, column 21: expected the end of the file, found "\\u{0}"\n'),
    ("[] []", "line 1, column 4: expected the end of the file"),
    ('{"width": 1e999}', "line 1, column 15: number overflow parsing '1e999'\n"),
    ('{"size": %s}' % ("1" * 400), "line 1, column 409: number overflow parsing '" + "1" * 175 + "...\n"),
    ('{"type": "\\ud83d"}', "line 1, column 17: syntax error while parsing value - invalid string: surrogate"),
    ('{"findings": ["%s"]}' % ("x" * 2**24), "line 1, column 16777216: expected an object of at most 16 MiB\n"),
    ("[3]", f"/0: expected an object with {KNOWN}, found 3\n"),
    ("[[]]", f"/0: expected an object with {KNOWN}, found an array\n"),
    ('{"labels": {}}', "/labels: expected an array, found an object\n"),
    ('{"tags": true}', "/tags: expected an array, found true\n"),
    ('{"labels": [null]}', "/labels/0: expected an object with name, note, part, found null\n"),
    ('{"tags": [[]]}', "/tags/0: expected an object with name, content, label, file, found an array\n"),
    ('{"labels": [{"name": []}]}', "/labels/0/name: expected a text, found an array\n"),
    ('{"labels": [{"name": {}}]}', "/labels/0/name: expected a text, found an object\n"),
    ('{"type": {}}', "/type: expected a text, found an object\n"),
    ('{"type": -7}', "/type: expected a text, found -7\n"),
    ('[{"path": "sun.jpg"}, {"labels": [{"name": "a"}, {"name": 1.50}]}]', "/1/labels/1/name: expected a text, found 1.50\n"),
    ('{"a~/b": 1}', f'/a~0~1b: expected one of the members {KNOWN}, found "a~/b"\n'),
    ('{"labels": [{"content": ""}]}', '/labels/0/content: expected one of the members name, note, part, found "content"\n'),
    ('{"pop": true, "pop": true}', "/pop: expected each member once, found it again\n"),
    ('{"tags": [], "tags": []}', "/tags: expected each member once, found it again\n"),
    ('{"labels": [{"name": "a"}, {"name": "a", "name": "b"}]}', "/labels/1/name: expected each member once, found it again\n"),
    ('{"labels": [{"note": "n"}]}', '/labels/0: expected a member "name", found an object without it\n'),
    ('{"labels": [{"name": "n", "part": 22}]}', "/labels/0/part: expected a part of speech, 0 to 21 or its name, found 22\n"),
    ('{"tags": [{"name": "n"}]}', '/tags/0: expected a member "content", found'),
    ('{"blobs": [{"label": "EMJ", "name": "x", "bytes": "!"}]}', '/blobs/0/bytes: expected base64 or null, found "!"\n'),
    ('{"blobs": [{"name": "x", "bytes": "AAAA"}]}', '/blobs/0: expected a member "label", found'),
    ('{"blobs": [{"name": "x", "bytes": null}, {"name": "y"}]}', '/blobs/1: expected "bytes" in all blobs or in none, found a blob'),
    ('[{"type": "x"}]', '/0: expected a member "path", found none\n'),
    ('{"path": ""}', '/path: expected the name of a file, found ""\n'),
    ('{"path": "star.png\\u0000"}', '/path: expected a text without NUL, found "star.png\\u{0}"\n'),
    ('{"pathBase64": "AAAA"}', '/pathBase64: expected base64 of bytes without NUL, found "AAAA"\n'),
    ('{"typeBase64": "/x=="}', "/typeBase64: expected base64 of"),
    ('{"typeBase64": "/w"}', "/typeBase64: expected base64 of"),
    ('{"typeBase64": "/_8="}', "/typeBase64: expected base64 of"),
    ('{"typeBase64": ""}', "/typeBase64: expected base64 of"),
    ('{"type": "new", "typeBase64": "/w=="}', '/type: expected the text of "typeBase64" or no such member, found "new"\n'),
    ('[{"path": "no.gif"}, {"path": "star.png"}, {"path": "no.gif"}]', f"/2/path: {EACH}it again\n"),
    ('[{"path": "star.png"}, {"path": "hard.png"}, {"path": "hard.png"}]', f"/2/path: {EACH}it again\n"),
    ('[{"path": "star.png", "type": "x"}, {"path": "hard.png"}]',
     f'/1/path: {EACH}"hard.png", another name of "star.png", with other changes\n'),
    ('[{"path": "sun.jpg", "type": "x"}, {"path": "star.png", "type": "x"}, {"path": "./sun.jpg", "type": "y"}]', f'/2/path: {EACH}"./sun.jpg"'),
]
EMBED = '{"tags": [{"name": "n", "label": "%s", "file": "%s"}]}'
REFUSED += [(EMBED % (mark, file), f"/tags/0/file: expected {text}") for mark, file, text in (
    ("EMJ1", "out.bin\\u0000", 'a text without NUL, found "out.bin\\u{0}"\n'),
    ("EMJ1", "../outside.bin", 'a file to embed (outside of "'),
    ("EMJ1", "outlink.bin", 'a file to embed (outside of "'),
    ("EMJ1", "nope", 'a file to embed (No such file or directory), found "nope"\n'),
    ("EMJ1", "empty.gif", 'a file to embed ("empty.gif": empty file), '),
    ("XYZ", "out.bin", "a file to embed (a blob's label must begin with EMJ"))]


def prepare(folder):
    os.chdir(ROOT)
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(ROOT / "samples", folder)
    os.chdir(folder)
    os.mkfifo("fifo.png")
    os.symlink("smile.gif", "link.gif")
    os.mkdir("[sub]")
    shutil.copy("blobs/boing.mid", "[sub]")
    shutil.copy("classic.gif", "[sub]/.lumigram-abcdefgh.gif")
    shutil.copy("classic.gif", "[sub]/CLASSIC.GIF")
    os.mkdir("[sub]/deep")
    shutil.copy("sun.jpg", "[sub]/deep")
    for target, link in (("..", "up"), ("CLASSIC.GIF", "a.gif"), ("../wink.gif", "w.gif"), ("nothing", "z.png")):
        os.symlink(target, f"[sub]/{link}")
    os.link("star.png", "hard.png")
    os.symlink("../outside.bin", "outlink.bin")
    for name, data in (("../outside.bin", b"secret"), ("empty.gif", b""), ("out.bin", b"some bytes"), ("classic.gif~", b"old"), ("-dash.png", b""),
                       ("fake.gif", pathlib.Path("wide.png").read_bytes()), ("large.png", FULL + b"x"), ("full.png", FULL)):
        pathlib.Path(name).write_bytes(data)


def test_commands(folder):
    for command, status, *expected in COMMANDS:
        prepare(folder)
        before = contents()
        got, out, err = run(command, expected.pop(0) if command.startswith(FROM) else "")
        missing = [text for text in expected if text.lstrip("!") not in (err if text[0] == "!" else out)]
        report(command[:100], got != status and f"status {got}", status == 2 and err.count("\n") != 1 and "not one line", missing and f"no {missing} in:\n{out}{err}",
               " written" not in out and contents() != before and "files have changed")


def test_refused_json(folder):
    prepare(folder)
    before = contents()
    for text, message in REFUSED:
        got = run("set --category c --from -", text)
        fine = got[:2] == (2, "") and got[2].startswith("lumigram: standard input: " + message) and got[2].count("\n") == 1 and len(got[2]) < 300
        report(f"refused: {text[:80]!r}", not fine and str(got)[:400])
    report("refused JSON changes nothing", contents() != before)


def test_from(folder):
    prepare(folder)
    os.mkdir("pack")
    os.environ["TMPDIR"] = "pack"
    edit = pathlib.Path("pack/edit.json")
    edit.write_text('[{"path": "star.png", "type": "x"}, {"path": "hard.png", "type": "x"}, {"path": "link.gif", "category": ""}]')
    report("two names of one picture", run("set -n --from pack/edit.json")[1].count("type\tx\n") != 1, run("set --type y --from pack/edit.json")[1] != "2 written\n",
           run("set --from pack/edit.json hard.png")[2] != "lumigram: pack/edit.json: expected one object for the paths given, found 3\n")
    edit.write_text(EMBED % ("EMJ1", "out.bin"))
    report("files below the folder of the JSON", f'(outside of "{folder}/pack"' not in run("set --from pack/edit.json plain.png")[2].replace("...", '"'),
           run("set --from [sub]/../pack/edit.json --files-anywhere plain.png")[1] != "1 written\n",
           run("set --from - plain.png", EMBED % ("EMJ1", "[sub]/../[sub]/boing.mid"))[1] != "1 written\n", run("extract EMJ1 boing.mid plain.png")[1][:4] != "MThd")
    report("no JSON", run("set --from no.json")[2] != "lumigram: no.json: No such file or directory\n", run("set --from .")[2] != "lumigram: .: Is a directory\n",
           run("set --from -", " [ ]\n") != (0, "0 written\n", ""), os.listdir("pack") != ["edit.json"])
    os.environ["TMPDIR"] = "pack/edit.json"
    report("no temporary file", "standard input: cannot be copied to a temporary file: " not in run("set --from -", "[]")[2])
    del os.environ["TMPDIR"]
    name = os.fsdecode(b"n\xff\xed\xa0\xbd\xed\xb8\x80.png")
    body = b"<label><name>\xed\xa0\x80a</name><note>\xc3b</note></label><category>c\xf5</category><type>\xc0\xaf</type><tags name=\"\x80\">\xe2\x98</tags>"
    pathlib.Path(name).write_bytes(png(body, blob(b"EMJ\xfb", b"b\xfe")))
    pack = run(["show", "--json", name])[1]
    [shown] = json.loads(pack)
    report("bytes that are no text are shown", shown["path"] != "n\ufffd😀.png" or shown["pathBase64"] != "bv/toL3tuIAucG5n", shown["category"] != "c\ufffd" or shown["categoryBase64"] != "Y/U=",
           shown["blobs"] != [{"label": "EMJ\ufffd", "labelBase64": "RU1K+w==", "name": "b\ufffd", "nameBase64": "Yv4=", "size": 4}])
    unchanged = run("set --from -", pack)
    shutil.copy("plain.png", name)
    restored = run("set --from -", pack)
    report("bytes that are no text come back", unchanged[1] != "0 written, 1 unchanged\n" and unchanged, restored[1] != "1 written\n" and restored, body not in pathlib.Path(name).read_bytes())


# Conditions, and the pictures for which they hold, in the order of FOUND.
FOUND = "smile.gif wink.gif star.png sun.jpg heart.png classic.gif plain.png nameless.jpg"
FIND = [
    ("--text SMILE", "smile.gif"), ("--text 'HAPPY 🎉'", "smile.gif"), ("--label 😀", "smile.gif"), ("--exact --text smile", ""), ("--text sound", ""),
    ("--text crimson", "heart.png"), ("--exact --text anime", "smile.gif wink.gif"), ("--text 😉 --text wink", "wink.gif"), ("--text weather", "sun.jpg"),
    ("--exact --label star", "classic.gif"), ("--label shining", ""), ("--exact --note 'a friendly face' --label 笑う", "smile.gif"), ("--note star", ""),
    ("--part VERB", "smile.gif wink.gif star.png sun.jpg"), ("--exact --part verb", "smile.gif"), ("--part 副詞", "star.png sun.jpg"), ("--part 5", "wink.gif star.png"),
    ("--exact --part 0", "wink.gif sun.jpg classic.gif"), ("--category symbol --type STILL", "star.png heart.png classic.gif"), ("--category still", ""), ("--type face", ""),
    ("--exact --category=", "plain.png"), ("--tag COLOR=gold", "classic.gif"), ("--tag moo", "smile.gif star.png"), ("--exact --tag mood=happy", ""),
    ("--exact --tag color=red --tag color=crimson", "heart.png"), ("--tag =summer", "sun.jpg"), ("--blob .MID", "smile.gif heart.png"), ("--exact --blob motion", ""),
    ("--no-label", "plain.png nameless.jpg"), ("--no-document", "plain.png"), ("--no-label --type ''", "plain.png nameless.jpg"), ("--count --type still", "5"), ("--count --no-label --label a", "0"),
]


def test_find(folder):
    prepare(folder)
    for conditions, expected in FIND:
        found = run(f"find {conditions} {FOUND}")
        report(f"find {conditions}", found != (0 if expected.strip("0") else 1, "".join(word + "\n" for word in expected.split()), "") and found)
    report("find when standard output is full", subprocess.run(f"'{TOOL}' find wink.gif >/dev/full", shell=True, capture_output=True).returncode != 2)


COPY = ["--force plain.png star.png", "sun.jpg -- plain.png", "smile.gif star.png", "--force heart.png smile.gif", "--force long.png rain.gif"]
# What is in two folders, by the samples, and what `copy -r --force` says about them.
OLD = {"a.gif": "smile.gif", "sub/b.png": "heart.png", "c.gif": "wink.gif", "c.png": "heart.png", "d.png": "heart.png", "e.gif": "wink.gif",
       "f.gif": "smile.gif", "g.gif": "smile.gif"}
NEW = {"a.png": "plain.png", "sub/b.GIF": "classic.gif", "c.png": "plain.png", "d.jpg": "sun.jpg", "d.png": "plain.png", "f.png": "plain.png", "h.gif": "wink.gif"}
SAID = [f"new/{name}: {why} (-99)" for name, why in (
    ("c.png", "ambiguous: several pictures have this path"), ("d.jpg", "ambiguous: several pictures have this path"),
    ("d.png", "ambiguous: several pictures have this path"), ("e.gif", "a link that leaves the folder"), ("f.png", "ambiguous: its names have several pictures to copy from"),
    ("g.png", "ambiguous: its names have several pictures to copy from"), ("h.gif", "unpaired: no picture to copy from"))]
SAID += [f"old/{name}: {why} (-99)" for name, why in (("c.gif", "ambiguous: several pictures have this path"), ("c.png", "ambiguous: several pictures have this path"),
         ("d.png", "ambiguous: several pictures have this path"), ("e.gif", "unpaired: no picture to copy to"))]


def metadata(path):
    [shown] = json.loads(run(["show", "--json", path])[1])
    return [shown[key] for key in ("labels", "category", "type", "tags", "blobs")], [run(["extract", *key, path])[1] for key in
            ((blob["label"], blob["name"]) for blob in shown["blobs"])]


def test_copy(folder):
    prepare(folder)
    long = png("x" * 9986 + label("n" * 211))
    pathlib.Path("long.png").write_bytes(long)
    for words in COPY:
        old, new = [word for word in words.split() if "." in word]
        wanted, picture = metadata(old), contents()[new]
        done = run(f"copy --backup=.old {words}")
        report(f"copy {words}", done != (0, "1 written\n", "") and done, metadata(new) != wanted and metadata(new), contents()[new + ".old"] != picture,
               run(f"copy {words}")[1] != "0 written, 1 unchanged\n")
        os.remove(new + ".old")
    report("a document of 10,240 bytes", run("copy --force long.png heart.png")[2] != "heart.png: the document is too long for a PNG picture (-41)\n",
           b"<emoji>" + b"x" * 248 + b"\xff" not in contents()["rain.gif"])
    prepare(folder)
    odd = '<label><name>\xa0</name><odd/></label>\n'.join(("", tags(("t", "u")), tags(("v", "file://THIS/w"))))
    pathlib.Path("odd.png").write_bytes(png(odd, blob(b"EMJ", b"w")))
    report("without blobs", run("copy --force --without-blobs odd.png sun.jpg")[1] != "1 written\n", odd.replace(tags(("v", "file://THIS/w")), "").encode() not in contents()["sun.jpg"],
           run("copy --without-blobs odd.png heart.png")[0] != 1)
    for tree, names in (("old", OLD), ("new", NEW)):
        for name, sample in names.items():
            os.makedirs(os.path.dirname(f"{tree}/{name}"), exist_ok=True)
            shutil.copy(sample, f"{tree}/{name}")
    os.symlink("../wink.gif", "new/e.gif")
    os.link("new/f.png", "new/g.png")
    before = contents()
    status, out, err = run("copy -r --force old new/")
    report("copy folders", (status, out) != (1, "2 written, 11 failed\n") and repr(out), sorted(err.splitlines()) != sorted(SAID) and repr(err), metadata("new/a.png") != metadata("smile.gif"),
           metadata("new/sub/b.GIF") != metadata("heart.png"), contents() != before, run("find --label '' new/f.png")[0] != 1)


def test_backup(folder):
    prepare(folder)
    for name in ("wide.png", "cut.png", "empty.gif", "-dash.png", "fake.gif", "full.png", "large.png"):
        os.remove(name)
    pathlib.Path("missing.png").write_bytes(png(label("n") + tags(("s", "file://THIS/no.mid"))))
    pathlib.Path("unnamed.png").write_bytes(png(tags(("s", "file://THIS/b"), ("t", "file://THIS/no.mid")), blob(b"EMJ1", b"lost"), blob(b"EMJ2", b"b"), blob(b"EMJ3", b"b2")))
    pathlib.Path("four.png").write_bytes(png(tags(("s😀", "file://THIS/😀")), blob(b"EMJ", "😀".encode())))
    backup = run("show -r --json --blobs .")[1]
    unchanged = run("set --from -", backup)[1]
    cleared = run("clear -r .")
    restored = run("set --from -", backup)
    again = [json.loads(text) for text in (backup, run("show -r --json --blobs .")[1])]
    for picture in again[0] + again[1]:
        picture.pop("size")
    report("a backup is restored", unchanged.count("0 written") != 1 and unchanged, cleared[0] and cleared,
           (restored[0] or restored[1].count("note: ") != 2 or './missing.png: note: tag "s" refers to a blob that is not in the picture\n' not in restored[1]) and restored, again[0] != again[1] and repr(again))
    edited = run("set --from -", backup.replace('"category": ""', '"category": "new"'))
    report("an edited backup", edited[0] and edited, run("find --category new unnamed.png missing.png")[1] != "unnamed.png\nmissing.png\n", run("extract EMJ1 lost unnamed.png")[1] != "data",
           run("set --type t missing.png")[1] != "1 written\n", run("check missing.png")[:2] != (1, 'missing.png: missing: tag "s" refers to a blob that is not in the picture (-99)\n0 fine, 1 with losses\n'),
           "missing.png\tmissing\ttag" not in run("show missing.png")[1])


def test_losing(folder):
    for name, (picture, labels, names, *lines) in LOSING.items():
        prepare(folder)
        path = pathlib.Path("losing.png")
        path.write_bytes(picture)
        losses = [line.split(": ", 1)[1].rsplit(" (", 1)[0] for line in lines if line.startswith("not ")]
        check, expected = run("check losing.png"), "".join(f"losing.png: {line}\n" for line in lines) + ("0 fine, 1 with losses\n" if losses else "1 fine\n")
        refused = run("set -n --category c losing.png")[2]
        forced = run("set --force --category c losing.png")
        again, [shown] = run("check losing.png")[0], json.loads(run("show --json losing.png")[1])
        got = [label["name"] for label in shown["labels"]], [tag["name"] for tag in shown["tags"]], shown["category"], forced[0], again
        report(f"losing: {name}", check != (bool(losses), expected, "") and f"check says {check}",
               (losses[0] + "; --force" if losses else "") not in refused and f"not refused: {refused}",
               names is not None and got != (labels, names, "c", 0, 0) and f"forced: {forced}, {got}")


HOSTILE = 'q"u\'o:\ttab\nline\u202ertl\x1b[31m😀'


def test_texts(folder):
    prepare(folder)
    run(["set", "--label", HOSTILE.replace(":", "\\:"), "--tag", f"{HOSTILE}={HOSTILE}", "plain.png"])
    [shown] = json.loads(run("show --json plain.png")[1])
    report("unusual texts are read back", shown["labels"][0]["name"] != HOSTILE, run(["tag", HOSTILE, "plain.png"])[1] != HOSTILE + "\n")
    report("new texts are spelled as Java does", b"\xed\xa0\xbd\xed\xb8\x80" not in contents()["plain.png"],
           run(["set", "--category", b"\xff", "plain.png"])[0] != 2)
    escaped = 'q"u\'o:\\ttab\\nline\\u{202e}rtl\\u{1b}[31m😀'
    shown = on_terminal("show plain.png")
    report("a terminal gets no control characters", shown.count(escaped) != 3 and repr(shown), "\x1b" in shown)
    run(["set", "--category", "C1 \x9b\u202eback\\slash\n", "--replace", "plain.png"])
    report("JSON on a terminal", "C1 \\u009b\\u202eback\\\\slash\\n" not in on_terminal("show --json plain.png"))
    report("between tabs", "\tcategory\tC1 \\u{9b}\\u{202e}back\\\\slash\\n\n" not in run("show plain.png")[1])
    coloured = {str(env): "\x1b[1m" in on_terminal("show plain.png", **env)
                for env in ({"TERM": "xterm", "NO_COLOR": ""}, {"TERM": "xterm", "NO_COLOR": "1"}, {"TERM": "dumb"}, {})}
    report("colours", list(coloured.values()) != [True, False, False, False] and repr(coloured))


# What a terminal with colours shows, with their codes in braces.
SCREENS = [
    ("show smile.gif", """{1}smile.gif{0}  GIF  96x96  5658 bytes  pop
  {2}label{0}     笑顔      にっこり         noun
            smile 😀  a friendly face  noun
            笑う                       verb
  {2}category{0}  face
  {2}type{0}      anime
  {2}tag{0}       color   yellow
            color   黄色
            mood    happy 🎉
            sound   file://THIS/boing.mid
            motion  file://THIS/motion.json
  {2}blob{0}      EMJSOUND1.0  boing.mid    61 bytes
            EMJMOTION    motion.json  620 bytes
"""),
    ("set -n --category c --tag color= star.png wink.gif", """{1}star.png{0}
{31}  -  category  symbol{0}
{31}  -  tag  color  value 0{0}
{32}  +  category  c{0}
{1}wink.gif{0}
{31}  -  category  face{0}
{32}  +  category  c{0}
2 would be written
"""),
    ("tag color star.png smile.gif", "star.png: value 0\nsmile.gif: yellow\nsmile.gif: 黄色\n"),
    ("extract EMJ boing.mid smile.gif", ""),
]


def test_screens(folder):
    prepare(folder)
    for command, expected in SCREENS:
        shown = on_terminal(command, TERM="xterm").replace("\r", "")
        report(f"on a terminal: {command}", shown != re.sub(r"{(\d+)}", "\x1b[\\1m", expected) and repr(shown))


def test_terminal(folder):
    """A picture that is locked for a while holds up the others, and so shows the progress."""
    prepare(folder)
    control, terminal = pty.openpty()
    with open("[sub]/w.gif") as held:
        fcntl.flock(held, fcntl.LOCK_EX)
        work = subprocess.Popen([TOOL, "set", "-r", "--category", "c", "[sub]"], stdout=subprocess.PIPE, stderr=terminal)
        shown = ""
        while shown.count(" left") < 3:
            shown += os.read(control, 4096).decode()
    report("progress", not re.search(r"\r2 of 3 pictures, [12]/s, [01] s left\x1b\[K", shown) and repr(shown),
           work.communicate()[0] != b"3 written\n", not screen(control, terminal).endswith("\r\x1b[K") and "the line stays")


def test_shortages(folder):
    prepare(folder)
    expected = run("check -r .")
    for what, kind, limits in (("threads", resource.RLIMIT_STACK, [1 << 47]), ("memory", resource.RLIMIT_AS, range(6 << 20, 32 << 20, 1 << 18)),
                               ("descriptors", resource.RLIMIT_NOFILE, range(3, 9))):
        results = []
        for limit in limits:
            done = subprocess.run([TOOL, "check", "-r", "."], capture_output=True, text=True,
                                  preexec_fn=lambda: resource.setrlimit(kind, (limit, resource.getrlimit(kind)[1])))
            results.append((done.returncode, done.stdout, done.stderr))
        # 127: the dynamic linker has refused the program.
        report(f"few {what}", [r for r in results if r[0] not in (0, 1, 127) or (r[0] and not r[2])],
               what == "memory" and "wink.gif: no memory (-99)\n" not in "".join(r[2] for r in results), results[-1] != expected and results[-1])
    work = subprocess.run(f"'{TOOL}' show wink.gif >&-; '{TOOL}' set --category c wink.gif <&- 2>&-; '{TOOL}' show wink.gif >/dev/full",
                          shell=True, capture_output=True, text=True)
    report("closed and full streams", work.stderr != "lumigram: standard output cannot be written\n" * 2 and repr(work.stderr),
           work.stdout != "1 written\n", run("check wink.gif")[0])
    levels = 2100
    for _ in range(levels):
        os.mkdir("d")
        os.chdir("d")
    os.chdir(folder)
    status, out, err = run("check -r d star.png")
    report("folders deeper than a path can be", status != 1, out != "1 fine, 1 failed\n" and repr(out), "d: File name too long (-20)" not in err and repr(err))
    subprocess.run(["rm", "-rf", "d"], check=True)


def test_round_trip(folder):
    prepare(folder)
    old = contents()
    pack = run("show --json smile.gif heart.png star.png sun.jpg moon.JPEG nameless.jpg")[1]
    report("a whole pack, unedited", run("set --from -", pack) != (0, "0 written, 6 unchanged\n", "") or contents() != old)
    edited = pack.replace("a friendly face", "kind").replace('"夏"', '"冬"')
    same = run("set --from - -n", edited)[1].count("\t+\t"), run("set --from -", edited)[1]
    report("two pictures of a pack, edited", same != (2, "2 written, 4 unchanged\n") and same,
           "smile 😀".encode() not in contents()["smile.gif"] and "the spelling of an unchanged text has changed",
           {name for name in old if contents()[name] != old[name]} != {"smile.gif", "link.gif", "sun.jpg"} and "others changed")
    blobs = [run(["extract", "EMJ", name, "smile.gif"])[1] for name in ("boing.mid", "motion.json")]
    report("blobs stay", blobs[1] != pathlib.Path("blobs/motion.json").read_text(), not blobs[0].startswith("MThd"))
    run("set --backup=.old --embed EMJX:sound=out.bin smile.gif")
    report("the backup is the old picture, and the blob's place is taken",
           pathlib.Path("smile.gif.old").read_bytes() == old["smile.gif"] or "a friendly face" in run("show smile.gif")[1],
           run("extract EMJX out.bin smile.gif")[1] != "some bytes", run("extract EMJ boing.mid smile.gif")[0] != 1)


# A shell command that runs in place of each fsync() of `set --backup`, whose numbers are: 1 the backup, 2 its folder, 3 the new
# picture. Then the exit status, a text in the errors, and what is there afterwards.
SHIM = """#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
int fsync(int fd) {
  static int n;
  char command[999];
  snprintf(command, sizeof command, "n=%d; %s", ++n, getenv("AT_SYNC"));
  return system(command) == 0 ? 0 : (errno = EIO, -1);
}"""
AT_SYNC = [
    ("[ $n != 3 ] || cmp -s p.png p.png~", 0, "", {"p.png": "new", "p.png~": "old"}),
    ("[ $n != 1 ] || chmod 604 p.png", 0, "", {"p.png": "new", "p.png~": "old"}),
    ("sleep 0.02; touch p.png", 1, "p.png: other programs kept changing it", {"p.png": "old"}),
    ("rm -f p.png", 1, "p.png: was deleted while it was being changed", {}),
    ("exit 1", 1, 'the backup "p.png~": Input/output error', {"p.png": "old"}),
    ("[ $n != 2 ]", 1, 'the backup "p.png~" cannot be made durable: Input', {"p.png": "old"}),
    ("[ $n != 3 ]", 1, "p.png: cannot be written: Input/output error", {"p.png": "old"}),
    ("[ $n != 1 ] || kill -9 $PPID", -9, "", {"p.png": "old", "temporary": "old"}),
    ("[ $n != 2 ] || kill -9 $PPID", -9, "", {"p.png": "old", "p.png~": "old"}),
    ("[ $n != 3 ] || kill -9 $PPID", -9, "", {"p.png": "old", "p.png~": "old", "temporary": "new"}),
]


def test_storing(folder):
    subprocess.run(["cc", "-shared", "-fPIC", "-xc", "-", "-o", folder.parent / "shim.so"], input=SHIM.encode(), check=True)
    old, words = (ROOT / "samples/plain.png").read_bytes(), ["set", "--backup", "--category", "c", "p.png"]
    for command, status, text, expected in AT_SYNC:
        shutil.rmtree(folder)
        folder.mkdir()
        os.chdir(folder)
        pathlib.Path("p.png").write_bytes(old)
        os.chmod("p.png", 0o600)
        done = subprocess.run([TOOL, *words], capture_output=True, text=True,
                              env={**os.environ, "LD_PRELOAD": str(folder.parent / "shim.so"), "AT_SYNC": command})
        left = {"temporary" if name.startswith(".lumigram-") else name: "old" if data == old else "new" for name, data in contents().items()}
        modes = {path.stat().st_mode & 0o777 for path in pathlib.Path().glob("p*")}
        report(f"at each sync: {command}", done.returncode != status and f"status {done.returncode}", text not in done.stderr and repr(done.stderr),
               left != expected and repr(left), len(modes) > 1 or ("604" in command and modes != {0o604}) and f"modes {modes}",
               status == -9 and run(words)[0] != 0 and "a killed run keeps the next one from working")


def test_together(folder):
    prepare(folder)
    with open("star.png") as held:
        fcntl.flock(held, fcntl.LOCK_EX)
        waiting = subprocess.Popen([TOOL, "set", "--category", "c", "star.png"], stdout=subprocess.DEVNULL)
        time.sleep(0.2)
        early = waiting.poll() is not None
        os.rename("heart.png", "star.png")
    report("a lock is waited for", early, waiting.wait() != 0, "value 0" in run("show star.png")[1])
    for i in range(20):
        tools = [subprocess.Popen([TOOL, "set", "--tag", f"{name}={i}", "plain.png"], stdout=subprocess.DEVNULL) for name in "ab"]
        if any([tool.wait() for tool in tools]) or run("show plain.png")[1].count(f"\t{i}\n") != 2:
            return report("two tools on one picture", f"round {i}: an update is lost")
    report("two tools on one picture", [name for name in contents() if name.startswith(".lumigram-")])


# A command, the sample on standard input, the exit status, the sample or file that standard output equals, and the errors.
ALONE = "lumigram: - is standard input: the only path, without -r, --backup and --from -; ./- is a file\n"
INPUT = [
    ("set --category q -", "smile.gif", 0, "changed.gif", "1 written\n"),
    ("set --from named.json -", "smile.gif", 0, "changed.gif", "1 written\n"),
    ("set --category face -", "smile.gif", 0, "smile.gif", "0 written, 1 unchanged\n"),
    ("clear -", "star.png", 0, "bare.png", "1 written\n"),
    ("set --category q -", "cut.png", 1, "empty.gif", "-: damaged or truncated picture (-30)\n0 written, 1 failed\n"),
    ("extract EMJ boing.mid -", "smile.gif", 0, "blobs/boing.mid", ""),
    ("extract EMJ boing.mid - -o smile.gif", "smile.gif", 1, "empty.gif", "smile.gif: is the picture that the blob is taken from (-99)\n"),
    ("tag color -", "star.png", 0, "color", ""),
    ("show -", "empty.gif", 1, "empty.gif", "-: no bytes (-99)\n"),
    ("show -", "README.md", 1, "empty.gif", "-: neither a GIF nor a PNG nor a JPEG picture (-21)\n"),
    ("check -", "large", 1, "failed", "-: over 2 MiB (-99)\n"),
    ("show - smile.gif", "smile.gif", 2, "empty.gif", ALONE),
    ("show -r -", "smile.gif", 2, "empty.gif", ALONE),
    ("clear --backup -", "smile.gif", 2, "empty.gif", ALONE),
    ("set --from - -", "named.json", 2, "empty.gif", ALONE),
    ("set --from named.json", "smile.gif", 2, "empty.gif", "lumigram: named.json: /0/path: expected a file, found -; ./- is one\n"),
]


def test_input(folder):
    prepare(folder)
    shutil.copy("smile.gif", "changed.gif")
    shutil.copy("star.png", "bare.png")
    run("set --category q changed.gif"), run("clear bare.png")
    for name, text in (("named.json", '[{"path": "-", "category": "q"}]'), ("large", "GIF89a" + "x" * 2097147), ("color", "value 0\n"), ("failed", "0 fine, 1 failed\n")):
        pathlib.Path(name).write_text(text)
    for command, sample, status, expected, errors in INPUT:
        with open(sample) as given:
            done = subprocess.run([TOOL, *command.split()], stdin=given, capture_output=True)
        report(f"{command} <{sample}", done.returncode != status and f"status {done.returncode}", done.stdout != pathlib.Path(expected).read_bytes() and "another output",
               done.stderr.decode() != errors and repr(done.stderr))
    control, terminal = pty.openpty()
    with open("smile.gif") as given:
        status = subprocess.run([TOOL, "clear", "-"], stdin=given, stdout=terminal, stderr=subprocess.DEVNULL).returncode
    report("no picture is written to a terminal", status != 2, screen(control, terminal) != "")


def test_extract(folder):
    prepare(folder)
    os.chmod("out.bin", 0o640)
    os.symlink("out.bin", "link.bin")
    words = "extract EMJ motion.json smile.gif -o".split()
    for name in ("link.bin", "new.bin"):
        before = contents()
        full = subprocess.run([TOOL, *words, name], stderr=subprocess.PIPE, text=True,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (99, 99)))
        report(f"extract to a full disk: {name}", full.stderr != f"{name}: File too large (-99)\n" and repr(full.stderr), contents() != before)
        run([*words, name])
    new = pathlib.Path("blobs/motion.json").read_bytes()
    report("extract to a file", {contents()[name] for name in ("new.bin", "link.bin", "out.bin")} != {new},
           not os.path.islink("link.bin"), os.stat("out.bin").st_mode & 0o777 != 0o640, os.stat("new.bin").st_mode & 0o111)


# The names of a picture's blobs, and those of the files.
BLOBS = [(b"a", "a"), (b"a", "a~2"), (b"../a", "_._a"), (b".h", "_h"), (b"", "_"), (b"n\x1b\xff\xe2\x80\xae", "n___"), (b"_", "_~2"), (b"x" * 256, "x" * 255),
         (b"\xed\xa0\xbd\xed\xb8\x80" * 42 + b"abc", "😀" * 42 + "abc"), ("é".encode() * 127 + b"b", "é" * 127 + "b"), ("é".encode() * 127 + b"b", "é" * 126 + "~2")]


def test_extract_all(folder):
    prepare(folder)
    pathlib.Path("names.png").write_bytes(png("", *[blob(b"EMJ", name) for name, _ in BLOBS]))
    command = "extract --all -d out/put ./names.png ../pictures/smile.gif plain.png cut.png"
    done, again = run(command), run(command)
    files = {str(path)[8:]: path.read_bytes() for path in pathlib.Path("out/put").rglob("*") if path.is_file()}
    expected = {f"names.png/{name}": b"data" for _, name in BLOBS}
    expected |= {f"__/pictures/smile.gif/{name}": pathlib.Path(f"blobs/{name}").read_bytes() for name in ("boing.mid", "motion.json")}
    report("extract all blobs", done != (1, "2 extracted, 1 without blobs, 1 failed\n", "cut.png: damaged or truncated picture (-30)\n") and done, files != expected and repr(files))
    report("extract all blobs again", again[:2] != (1, "0 extracted, 1 without blobs, 3 failed\n") and repr(again),
           "./names.png: out/put/names.png/a: File exists; --force replaces it (-99)\n" not in again[2])
    os.mkdir("out/put/smile.gif")
    os.symlink(folder / "out.bin", "out/put/smile.gif/motion.json")
    os.symlink(folder / "[sub]", "out/put/heart.png")
    before = contents(), os.listdir("[sub]")
    refused, there = run("extract --all -d out/put smile.gif"), sorted(os.listdir("out/put/smile.gif"))
    forced = run("extract --force --all -d out/put heart.png smile.gif")
    report("no link is followed", refused[0] != 1, there != ["boing.mid", "motion.json"] and repr(there), forced != (1, "1 extracted, 1 failed\n", "heart.png: out/put/heart.png: Not a directory (-99)\n") and forced,
           (contents(), os.listdir("[sub]")) != before, pathlib.Path("out/put/smile.gif/motion.json").read_bytes() != expected["__/pictures/smile.gif/motion.json"])


def interrupt(folder):
    """Ctrl-C after the first ten of a thousand pictures. None if a busy machine was late, and all were done by then."""
    shutil.rmtree(folder)
    folder.mkdir()
    for i in range(1000):
        sample = ROOT / "samples" / ("wink.gif", "star.png", "sun.jpg")[i % 3]
        shutil.copy(sample, folder / f"{i:03}{sample.suffix}")
    os.chdir(folder)
    os.truncate("999.gif", 90)
    old = contents()
    work = subprocess.Popen(["nice", TOOL, "set", "-r", "--category", "cut", "."], stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
    while pathlib.Path("010.png").stat().st_size == len(old["010.png"]) and work.poll() is None:
        time.sleep(0.0005)
    work.send_signal(signal.SIGINT)
    err = work.communicate()[1]
    return None if work.returncode == 1 else (work, err, old)


def test_thousand(folder):
    work, err, old = next(filter(None, (interrupt(folder) for _ in range(20))))
    new = contents()
    changed = [name for name in new if new[name] != old.get(name)]
    rest = run("set -r --category cut .")
    report("interrupted", work.returncode != 130 and repr(work.returncode), not 10 < len(changed) < 1000 and repr(len(changed)),
           err.decode() != f"interrupted: {len(changed)} pictures are done\n" and repr(err), new.keys() != old.keys(),
           [name for name in changed if new[name] != contents()[name]])
    report("the rest of 1,000", rest != (1, f"{999 - len(changed)} written, {len(changed)} unchanged, 1 failed\n",
           "./999.gif: damaged or truncated picture (-30)\n") and rest, run("show -r .")[1].count("category\tcut\n") != 999)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory(dir="/dev/shm" if os.path.isdir("/dev/shm") else None) as work_folder:
        for test in (test_commands, test_refused_json, test_from, test_backup, test_find, test_copy, test_losing, test_texts, test_screens, test_terminal, test_shortages, test_round_trip, test_storing, test_together, test_input, test_extract, test_extract_all, test_thousand):
            test(pathlib.Path(work_folder) / "pictures")
        os.chdir(ROOT)
    print(f"{counts['PASS']} passed, {counts['FAIL']} failed")
    sys.exit(1 if counts["FAIL"] else 0)
