"""Reads every sample with Python's plistlib and with describe_list; both must see the same list.

Arguments: DESCRIBE_LIST SAMPLES_FOLDER. Results: 0 all equal, 1 a difference, 77 no samples to compare.
"""
import datetime
import gzip
import pathlib
import plistlib
import struct
import subprocess
import sys
import tempfile

REFERENCE_DATE = datetime.datetime(2001, 1, 1)


def quoted(text):
    return '"%s"' % "".join(
        chr(b) if 0x20 <= b <= 0x7E and b not in b'"\\' else "\\x%02x" % b for b in text.encode("utf-8")
    )


DESCRIPTIONS = {
    dict: lambda pairs: "{%s}" % ",".join(quoted(k) + ":" + describe(v) for k, v in pairs.items()),
    list: lambda items: "[%s]" % ",".join(map(describe, items)),
    str: quoted,
    bool: lambda flag: "T" if flag else "F",
    int: lambda number: "i%d" % number,
    float: lambda real: "r%016x" % struct.unpack(">Q", struct.pack(">d", real)),
    bytes: lambda data: "<%s>" % data.hex(),
    plistlib.UID: lambda uid: "u%d" % uid.data,
    datetime.datetime: lambda date: "d%d" % round((date - REFERENCE_DATE).total_seconds() * 1000),
}


def describe(value):
    return DESCRIPTIONS[type(value)](value)


def main():
    describe_list, samples = sys.argv[1], pathlib.Path(sys.argv[2])
    folders = ("plist", "itunes-xml", "prefs", "epub")
    compared = differing = 0
    for path in [p for folder in folders for p in sorted((samples / folder).rglob("*")) if p.is_file()]:
        data = gzip.decompress(path.read_bytes()) if path.suffix == ".gz" else path.read_bytes()
        try:
            expected = plistlib.loads(data)
        except Exception:  # plistlib lets errors of its parsers through, each of its own class
            expected = None
        if expected is None:
            continue
        with tempfile.NamedTemporaryFile() as unpacked:
            pathlib.Path(unpacked.name).write_bytes(data)
            output = subprocess.run([describe_list, unpacked.name], stdout=subprocess.PIPE, check=True).stdout
        compared += 1
        if output.decode("ascii").rstrip("\n") != describe(expected):
            differing += 1
            print("differs:", path)
    print("%d lists compared, %d differ" % (compared, differing))
    return 77 if compared == 0 else int(differing > 0)


sys.exit(main())
