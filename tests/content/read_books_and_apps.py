#!/usr/bin/env python3
"""Reads books and applications with Python's own readers and says what the driver should show of them.

Usage: read_books_and_apps.py LANGUAGE PATH...
Prints a line for each file or folder: its name, then "key=value" for each value, with tabs between; "refused" for an
application that is none.
"""

import plistlib
import re
import sys
import xml.dom.minidom
import zipfile
from pathlib import Path


class Folder:
    """A folder with the face of an archive."""

    def __init__(self, path):
        self.path = path

    def namelist(self):
        return [file.relative_to(self.path).as_posix() for file in self.path.rglob("*") if file.is_file()]

    def read(self, name):
        return (self.path / name).read_bytes()


def find(archive, name):
    """The first entry of this name, whatever its letter case."""
    return next((entry for entry in archive.namelist() if entry.lower() == name.lower()), None)


def document(archive, name):
    entry = find(archive, name)
    try:
        return entry and xml.dom.minidom.parseString(archive.read(entry))
    except Exception:  # whatever is wrong with it, nothing can be read
        return None


def child(node, *names):
    """The element at the end of a path, the first of its name at each step."""
    for name in names:
        node = node and next((element for element in node.childNodes if element.nodeName == name), None)
    return node


def text(element):
    return "".join(part.data for part in element.childNodes if part.nodeType in (part.TEXT_NODE, part.CDATA_SECTION_NODE))


def beside(directory, reference):
    return f"{directory}/{reference}" if directory else reference


def page_image(archive, name):
    page = document(archive, name)
    images = [child(page, "html", "body", element, "img") for element in ("p", "div")]
    return next((image.getAttribute("src") for image in images if image and image.hasAttribute("src")), None)


def cover(archive, package, directory):
    manifest = child(package, "package", "manifest")
    for item in manifest.getElementsByTagName("item") if manifest else []:
        if item.getAttribute("id") == "cover" and item.getAttribute("href"):
            reference = item.getAttribute("href")
            if item.getAttribute("media-type").lower() == "application/xhtml+xml":
                reference = page_image(archive, beside(directory, reference))
            return reference and beside(directory, reference)
    return None


def read_book(path):
    if not path.is_dir() and not zipfile.is_zipfile(path):
        return [f"name={path.stem}"]
    archive = Folder(path) if path.is_dir() else zipfile.ZipFile(path)
    artwork = find(archive, "iTunesArtwork") and "iTunesArtwork"
    root_file = child(document(archive, "META-INF/container.xml"), "container", "rootfiles", "rootfile")
    package_path = root_file.getAttribute("full-path") if root_file else ""
    package = document(archive, package_path) if package_path else None
    values = []
    metadata = child(package, "package", "metadata")
    for element in metadata.childNodes if metadata else []:
        key = {"dc:title": "name", "dc:creator": "artist"}.get(element.nodeName)
        if key:
            values.append(f"{key}={text(element)}")
    if not any(value.startswith("name=") for value in values):
        values.append(f"name={path.stem}")
    found = artwork or cover(archive, package, package_path.rpartition("/")[0])
    return values + ([f"cover={found}"] if found else [])


def load(archive, pattern):
    """Name and content of the first dictionary whose entry begins as the pattern says."""
    for entry in archive.namelist():
        if re.match(pattern, entry, re.IGNORECASE):
            try:
                return entry, plistlib.loads(archive.read(entry))
            except Exception:  # an old-style list: "key" = "value";
                lines = archive.read(entry).decode("utf-16" if b"\0" in archive.read(entry) else "utf-8")
                return entry, dict(re.findall(r'"?(\w+)"?\s*=\s*"(.*?)"\s*;', lines))
    return None, {}


def read_app(path, language):
    if not zipfile.is_zipfile(path):
        return ["refused"]
    archive = zipfile.ZipFile(path)
    _, metadata = load(archive, "iTunesMetadata.plist")
    entry, bundle = load(archive, "Payload/[^/]+/Info.plist$")
    _, names = load(archive, f"Payload/[^/]+/{language}.lproj/InfoPlist.strings$")
    if not entry:
        return ["refused"]
    bundle_icon = bundle.get("CFBundleIconFile")
    bundle_icon = bundle_icon and find(archive, entry.rpartition("/")[0] + "/" + bundle_icon)
    fields = {
        "bundleId": metadata.get("softwareVersionBundleId") or bundle.get("CFBundleIdentifier"),
        "name": names.get("CFBundleDisplayName")
        or metadata.get("bundleDisplayName")
        or bundle.get("CFBundleDisplayName")
        or path.name,
        "bundleVersion": metadata.get("bundleVersion"),
        "genre": metadata.get("genre"),
        "icon": "iTunesArtwork"
        if any(re.match("iTunesArtwork", name, re.IGNORECASE) for name in archive.namelist())
        else metadata.get("softwareIcon57x57URL") or bundle_icon,
    }
    return [f"{key}={value}" for key, value in fields.items() if value]


def main():
    language, paths = sys.argv[1], [Path(path) for path in sys.argv[2:]]
    sys.stdout.reconfigure(encoding="utf-8")
    for path in paths:
        values = read_book(path) if path.suffix in {".epub", ".pdf"} else read_app(path, language)
        print("\t".join([path.name] + values).replace("\n", "\\n"))


if __name__ == "__main__":
    main()
