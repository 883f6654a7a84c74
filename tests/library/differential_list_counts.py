#!/usr/bin/env python3
"""Counts the tracks in the lists of real libraries twice: as velmarhost shows them, and with Python's plistlib.

Usage: differential_list_counts.py VELMARHOST SAMPLES_FOLDER
Ends with 77, which ctest takes as skipped, where the libraries are not there.
"""

import gzip
import json
import plistlib
import subprocess
import sys
import tempfile
from pathlib import Path

SKIPPED = 77
MARKER = "####!####"
WITHOUT_PATH = {6, 57, 58, 59}
# Distinguished Kind -> folder of the tree and name there; None stands for the list's own name.
PLACES = {
    2: ("library", "movie"),
    3: ("library", "tvshow"),
    4: ("library", "music"),
    5: ("library", "book"),
    10: ("library", "podcast"),
    18: ("library", "app"),
    19: ("library", None),
    26: ("genius", None),
    31: ("library", None),
    48: ("library", "movie"),
}


def is_film(track):
    if track.get("Podcast") or track.get("TV Show"):
        return False
    return bool(track.get("Movie") or track.get("Has Video"))


def expected_lists(library):
    """Triples of folder, list name and track ids, in the order of the file."""
    lists = []
    master = []
    for playlist in library.get("Playlists", []):
        number = playlist.get("Distinguished Kind", 0)
        if playlist.get("Name") == MARKER or number in WITHOUT_PATH:
            continue
        folder, name = PLACES.get(number, ("playlist", None))
        items = [item["Track ID"] for item in playlist.get("Playlist Items", [])]
        items = [item for item in items if str(item) in library["Tracks"]]
        shared = [known for known in lists if name == "movie" and known[:2] == ("library", "movie")]
        if shared:
            shared[0][2].extend(items)
        else:
            lists.append((folder, name or playlist["Name"], items))
        if number == 0 and playlist.get("Master"):
            master = items
    for folder, name, items in lists:
        if (folder, name) == ("library", "movie"):
            films = [item for item in master if is_film(library["Tracks"][str(item)])]
            items.extend(item for item in films if item not in items)
    return [(folder, name, len(items)) for folder, name, items in lists] + scanned_roots(lists)


def scanned_roots(lists):
    """The roots that the scans of local folders make, empty here, where no list has made them."""
    roots = {name for folder, name, _ in lists if folder == "library"}
    wanted = [("ringtone", "ringtone"), ("Books", "book"), ("app", "app")]
    return [("library", name, 0) for name, made_by_list in wanted if made_by_list not in roots]


def shown_lists(entries):
    """The same from velmarhost's entries; the count is None for a list that no path reaches."""
    lists = []
    folder = None
    for entry in entries:
        if entry["depth"] == 1:
            folder = entry["name"]
        elif entry["depth"] == 2:
            lists.append([folder, entry["name"], 0 if entry["reachable"] else None])
        elif entry["depth"] == 3 and entry.get("kind", 4) == 4:
            lists[-1][2] += 1
    return [tuple(entry) for entry in lists]


def differences(expected, shown):
    # velmarhost goes folder by folder; inside a folder the order is that of the file.
    order = ["library", "genius", "playlist"]
    expected = sorted(expected, key=lambda entry: order.index(entry[0]))
    if [entry[:2] for entry in expected] != [entry[:2] for entry in shown]:
        return [f"lists differ: expected {expected}, shown {shown}"]
    pairs = [(want, have) for want, have in zip(expected, shown) if have[2] is not None and want[2] != have[2]]
    return [f"{want[0]}/{want[1]}: expected {want[2]} tracks, shown {have[2]}" for want, have in pairs]


def check(velmarhost, sample, scratch):
    data = sample.read_bytes()
    data = gzip.decompress(data) if sample.suffix == ".gz" else data
    copy = Path(scratch) / "iTunes Library.xml"
    copy.write_bytes(data)
    command = [velmarhost, "--library", str(copy), "tree", "--json"]
    shown = shown_lists(json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout))
    expected = expected_lists(plistlib.loads(data))
    faults = differences(expected, shown)
    tracks = sum(entry[2] for entry in expected)
    print(f"{sample.name}: {len(expected)} lists, {tracks} tracks in them, {len(faults)} faults")
    for fault in faults:
        print(f"  {fault}")
    return tracks, len(faults)


def main():
    velmarhost, folder = sys.argv[1], Path(sys.argv[2]) / "itunes-xml"
    samples = sorted(path for path in folder.rglob("*") if path.suffix in {".xml", ".gz"})
    if not samples:
        print(f"no libraries under {folder}: skipped")
        return SKIPPED
    with tempfile.TemporaryDirectory() as scratch:
        results = [check(velmarhost, sample, scratch) for sample in samples]
    if not sum(tracks for tracks, _ in results):
        print("no library has a track in a list")
        return 1
    return 1 if any(faults for _, faults in results) else 0


if __name__ == "__main__":
    sys.exit(main())
