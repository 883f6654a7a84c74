#include "tests/support/sample_loose_files.h"

#include "tests/support/archive_files.h"
#include "tests/support/artwork_file.h"
#include "tests/support/file_writing.h"
#include "tests/support/media_files.h"

namespace fs = std::filesystem;

namespace {

void WriteTones(const fs::path &media) {
    WriteFile(media / "Ringtones" / "Bell.m4r", M4aFile(2, {"Bell", "", "", "Ringtone", 0, 0}));
    WriteFile(media / "Tones" / "Ship's Horn.m4r", M4aFile(3, {"Ship's Horn", "", "", "Ringtone", 0, 0}));
}

void WriteBooks(const fs::path &books) {
    WriteFile(books / "A. Nother" / "Salt & Stars.epub", EpubFile({.title = "Salt & Stars",
                                                                   .author = "A. Nother",
                                                                   .subject = "Travel",
                                                                   .publisher = "Harbour Press",
                                                                   .date = "2011-06-01T00:00:00Z"},
                                                                  BookCover::kImage));
    WriteFile(books / "Tide Tables.pdf", PdfFile("Tide Tables"));
}

// One application as the shop delivers it, with its name in two languages, and one that says little of
// itself.
void WriteApplications(const fs::path &applications) {
    WriteFile(applications / "Star Map 1.2.ipa",
              ApplicationFile({.folder = "Star Map.app",
                               .info = {{"CFBundleIdentifier", XmlText("org.example.starmap")},
                                        {"CFBundleDisplayName", XmlText("StarMap")}},
                               .metadata = {{"softwareVersionBundleId", XmlText("org.example.starmap")},
                                            {"bundleDisplayName", XmlText("Star Map")},
                                            {"bundleVersion", XmlText("1.2")},
                                            {"artistName", XmlText("Example Makers")},
                                            {"genre", XmlText("Reference")}},
                               .names = {{"en", "Star Map"}, {"zh-Hans", "星图"}},
                               .artwork_side = 512}));
    WriteFile(applications / "Pocket Lamp.ipa",
              ApplicationFile({.folder = "Lamp.app",
                               .info = {{"CFBundleIdentifier", XmlText("org.example.lamp")},
                                        {"CFBundleDisplayName", XmlText("Pocket Lamp")},
                                        {"CFBundleIconFile", XmlText("Icon.png")}},
                               .icon_file = "Icon.png"}));
}

}  // namespace

void WriteLooseFiles(const LibraryPlace &place) {
    WriteTones(place.media_folder);
    WriteBooks(place.media_folder / "Books");
    WriteApplications(place.media_folder / "Mobile Applications");
    WriteFile(place.media_folder / "Movies" / "Found Footage" / "Found Footage.m4v",
              M4vFile(1, {"Found Footage", "", "", "Home Videos", 2014, 0}));
    WriteFile(place.add_folder / "Waiting Room.mp3",
              Mp3File(2, {"Waiting Room", "The Lanterns", "Unfiled", "Rock", 2014, 1, PngPicture(200)}));
}
