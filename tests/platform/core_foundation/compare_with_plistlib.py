"""Reads every sample with Python's plistlib and with describe_list; both must see the same list.

usage: compare_with_plistlib.py DESCRIBE_LIST SAMPLES_FOLDER

Results: 0 all equal, 1 a difference, 77 no samples to compare.
"""
import datetime
import gzip
import pathlib
import plistlib
import struct
import subprocess
import sys
import tempfile

SKIPPED = 77
REFERENCE_DATE = datetime.datetime(2001, 1, 1)


def quoted(text):
    return '"%s"' % "".join(
        chr(b) if 0x20 <= b <= 0x7E and b not in b'"\\' else "\\x%02x" % b
        for b in text.encode("utf-8")
    )


def describe(value):
    if isinstance(value, dict):
        return "{%s}" % ",".join(quoted(k) + ":" + describe(v) for k, v in value.items())
    if isinstance(value, list):
        return "[%s]" % ",".join(map(describe, value))
    if isinstance(value, str):
        return quoted(value)
    if isinstance(value, bool):
        return "T" if value else "F"
    if isinstance(value, int):
        return "i%d" % value
    if isinstance(value, float):
        return "r%016x" % struct.unpack(">Q", struct.pack(">d", value))
    if isinstance(value, bytes):
        return "<%s>" % value.hex()
    if isinstance(value, plistlib.UID):
        return "u%d" % value.data
    return "d%d" % round((value - REFERENCE_DATE).total_seconds() * 1000)


def read(path):
    """The list as plistlib sees it, or None for a file that it does not read."""
    try:
        return plistlib.loads(path.read_bytes())
    except Exception:  # plistlib lets errors of its parsers through, each of its own class
        return None


def main():
    describe_list, samples = sys.argv[1], pathlib.Path(sys.argv[2])
    folders = ("plist", "itunes-xml", "prefs", "epub")
    paths = [p for folder in folders for p in sorted((samples / folder).rglob("*")) if p.is_file()]
    compared = differing = 0
    with tempfile.TemporaryDirectory() as unpacked:
        for path in paths:
            if path.suffix == ".gz":
                target = pathlib.Path(unpacked) / path.stem
                target.write_bytes(gzip.decompress(path.read_bytes()))
                path = target
            expected = read(path)
            if expected is None:
                continue
            output = subprocess.run([describe_list, path], stdout=subprocess.PIPE, check=True).stdout
            compared += 1
            if output.decode("ascii").rstrip("\n") != describe(expected):
                differing += 1
                print("differs:", path)
    print("%d lists compared, %d differ" % (compared, differing))
    if compared == 0:
        return SKIPPED
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
