#include "fuzz/chosen_library.h"

#include <fstream>

#include "fixtures/archive_files.h"
#include "fixtures/artwork_file.h"
#include "fixtures/file_writing.h"
#include "fixtures/library_xml.h"
#include "fixtures/media_files.h"

namespace {

// Few, so that they meet each other.
constexpr const char *kPersistentIds[] = {"0000000000000001", "0000000000000002", "00000000000000FF", "7",
                                          ""};
constexpr const char *kLibraryId = "ABCDEF0123456789";

// Where the driver looks beside the library, and a place where it does not.
constexpr const char *kMediaNames[] = {"Music/a.mp3",
                                       "Music/b.mp3",
                                       "Movies/Film/c.m4v",
                                       "Books/d.epub",
                                       "Books/e.epub/mimetype",
                                       "Mobile Applications/f.ipa",
                                       "Mobile Applications/g.ipa",
                                       "Ringtones/h.m4r",
                                       "Tones/h.m4r",
                                       "Automatically Add to iTunes/a.mp3",
                                       "Automatically Add to iTunes/x/c.m4v",
                                       "Elsewhere/i.mp3"};

std::string ChosenId(Choices &choices) {
    return kPersistentIds[choices.Below(std::size(kPersistentIds))];
}

std::string ChosenLocation(const LibraryPlace &place, Choices &choices) {
    if (choices.Below(8) == 7) return choices.Text();
    return place.Location(place.media_folder / kMediaNames[choices.Below(std::size(kMediaNames))]);
}

std::string ChosenValue(Choices &choices) {
    switch (choices.Below(8)) {
        case 0:
            return XmlText(choices.Text());
        case 1:
            return XmlInteger(static_cast<int64_t>(choices.Number(8)));
        case 2:
            return XmlInteger(static_cast<int64_t>(choices.Number(1)));
        case 3:
            return XmlFlag(choices.Flag());
        case 4:
            return XmlDate("2013-05-0" + std::to_string(1 + choices.Below(9)) + "T10:20:30Z");
        case 5:
            return XmlData(choices.Text(), 1);
        case 6:
            return "<array><dict/></array>";
        default:
            return XmlReal("1e" + std::to_string(choices.Below(300)));
    }
}

XmlEntries ChosenTrack(const LibraryPlace &place, int64_t id, Choices &choices) {
    constexpr const char *kKeys[] = {
        "Name",          "Artist",        "Album",        "Genre",         "Kind",        "Size",
        "Year",          "Total Time",    "Track Number", "Date Modified", "Date Added",  "Podcast",
        "Has Video",     "Movie",         "TV Show",      "Purchased",     "Track ID",    "Location",
        "Persistent ID", "Artwork Count", "Music Video",  "Protected",     "Video Width", "Unknown"};
    XmlEntries entries = {{"Track ID", XmlInteger(id)}, {"Persistent ID", XmlText(ChosenId(choices))}};
    if (choices.Below(8) != 7) entries.push_back({"Location", XmlText(ChosenLocation(place, choices))});
    if (choices.Flag()) entries.push_back({choices.Flag() ? "Has Video" : "Podcast", XmlFlag(true)});
    for (size_t count = choices.Below(6); count > 0; --count)
        entries.push_back({kKeys[choices.Below(std::size(kKeys))], ChosenValue(choices)});
    return entries;
}

void WriteChosenPlaylist(LibraryXml &xml, Choices &choices) {
    if (choices.Below(16) == 15) {
        xml.RawPlaylist({{"Name", ChosenValue(choices)}, {"Playlist ID", ChosenValue(choices)}},
                        PlaylistItem(ChosenValue(choices)));
        return;
    }
    LibraryPlaylist list;
    list.name = choices.Flag() ? choices.Text() : "list" + std::to_string(choices.Below(4));
    list.playlist_id = static_cast<int>(choices.Number(2));
    list.persistent_id = ChosenId(choices);
    if (choices.Flag()) list.parent_persistent_id = ChosenId(choices);
    if (choices.Flag()) list.distinguished_kind = static_cast<int>(choices.Below(70)) - 1;
    list.master = choices.Below(4) == 3;
    list.folder = choices.Below(4) == 3;
    list.smart = choices.Below(4) == 3;
    for (size_t count = choices.Below(8); count > 0; --count)
        list.track_ids.push_back(static_cast<int64_t>(choices.Below(12)));
    xml.Playlist(list);
}

// Made once, as making them costs more than reading them.
const std::vector<std::string> &MediaBytes() {
    static const std::vector<std::string> all = [] {
        const MediaTags tags = {.title = "Title",
                                .artist = "Artist",
                                .album = "Album",
                                .genre = "Rock",
                                .year = 2004,
                                .track = 1,
                                .picture = PngPicture(4)};
        const XmlEntries info = {{"CFBundleIdentifier", XmlText("com.example.game")},
                                 {"CFBundleIconFile", XmlText("icon.png")}};
        return std::vector<std::string>{
            Mp3File(1, tags), M4aFile(1, tags), EpubFile({.title = "Book"}, BookCover::kImage),
            ApplicationFile({.folder = "Game.app", .info = info, .icon_file = "icon.png"}),
            ArtworkCacheFile({4, 6})};
    }();
    return all;
}

}  // namespace

std::string ChosenMediaBytes(Choices &choices) {
    const size_t kind = choices.Below(MediaBytes().size() + 1);
    return kind < MediaBytes().size() ? MediaBytes()[kind] : choices.Text();
}

void WriteChosenLibrary(const LibraryPlace &place, Choices &choices) {
    std::ofstream file(place.library_xml, std::ios::binary);
    LibraryXml xml(file);
    xml.UsualRoot(kLibraryId, place.Location(place.media_folder) + "/");
    const auto tracks = static_cast<int64_t>(choices.Below(12));
    for (int64_t id = 0; id < tracks; ++id) {
        const std::string key = choices.Below(16) == 15 ? choices.Text() : std::to_string(id);
        xml.Track(EscapeXml(key), ChosenTrack(place, id, choices));
    }
    for (size_t lists = choices.Below(8); lists > 0; --lists)
        WriteChosenPlaylist(xml, choices);
    xml.Finish();
}

void ChangeMediaFile(const LibraryPlace &place, Choices &choices) {
    constexpr size_t kDelete = 3;
    constexpr size_t kArtwork = 2;
    const std::filesystem::path name = kMediaNames[choices.Below(std::size(kMediaNames))];
    const size_t change = choices.Below(4);
    if (change == kDelete) {
        std::filesystem::remove(place.media_folder / name);
    } else if (change == kArtwork) {
        const std::string id = kPersistentIds[choices.Below(3)];
        WriteFile(place.library_xml.parent_path() / ArtworkCachePath(kLibraryId, id),
                  ChosenMediaBytes(choices));
    } else {
        WriteFile(place.media_folder / name, ChosenMediaBytes(choices));
    }
}
