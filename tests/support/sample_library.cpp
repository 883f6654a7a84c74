#include "tests/support/sample_library.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/archive_files.h"
#include "tests/support/artwork_file.h"
#include "tests/support/file_writing.h"
#include "tests/support/library_xml.h"
#include "tests/support/media_files.h"
#include "tests/support/sample_loose_files.h"

namespace fs = std::filesystem;

namespace {

enum class Format { kMp3, kM4a, kM4v, kWav, kPdf, kEpub, kNoFile };

struct SampleTrack {
    int id;
    MediaTags tags;
    Format format;
    int seconds;
    std::string_view file;  // below the media folder; empty for a track in the cloud
    std::string_view kind;
    std::vector<std::string_view> flags;  // keys that are true
};

std::vector<SampleTrack> Tracks() {
    using enum Format;
    constexpr std::string_view kMpeg = "MPEG audio file";
    return {
        {101,
         {"Rain & Thunder", "The Lanterns", "Wind & Weather", "Rock", 2004, 1},
         kMp3,
         3,
         "Music/The Lanterns/Wind & Weather/01 Rain & Thunder.mp3",
         kMpeg,
         {}},
        {102,
         {"Fog", "The Lanterns", "Wind & Weather", "Rock", 2004, 2},
         kMp3,
         2,
         "Music/The Lanterns/Wind & Weather/02 Fog.mp3",
         kMpeg,
         {}},
        {103,
         {"夜の音", "東京四重奏", "静けさ", "Jazz", 1999, 3},
         kMp3,
         4,
         "Music/東京四重奏/静けさ/03 夜の音.mp3",
         kMpeg,
         {}},
        {104,
         {"Fjäll och sjö", "Åsa Öberg", "Norrsken", "Folk", 2011, 1},
         kM4a,
         3,
         "Music/Åsa Öberg/Norrsken/01 Fjäll och sjö.m4a",
         "AAC audio file",
         {}},
        {105,
         {"440 Hertz <pure>", "Test Bench", "Tones", "Spoken", 2010, 1},
         kWav,
         1,
         "Music/Test Bench/Tones/01 440 Hertz.wav",
         "WAV audio file",
         {}},
        {106,
         {"Paid in Full Moons", "Åsa Öberg", "Norrsken", "Folk", 2011, 2},
         kM4a,
         2,
         "Music/Åsa Öberg/Norrsken/02 Paid in Full Moons.m4a",
         "Purchased AAC audio file",
         {"Purchased"}},
        {107,
         {"Gone with the Disk", "The Lanterns", "Wind & Weather", "Rock", 2004, 9},
         kNoFile,
         180,
         "Music/The Lanterns/Wind & Weather/09 Gone with the Disk.mp3",
         kMpeg,
         {}},
        {108,
         {"In the Cloud", "The Lanterns", "Wind & Weather", "Rock", 2004, 10},
         kNoFile,
         200,
         "",
         "Apple Music AAC audio file",
         {"Apple Music"}},
        {110,
         {"A Short Film", "Åsa Öberg", "", "Short Films", 2012, 0},
         kM4v,
         2,
         "Movies/A Short Film/A Short Film.m4v",
         "MPEG-4 video file",
         {"Has Video", "Movie"}},
        {111,
         {"Holiday Video", "", "", "Home Videos", 2013, 0},
         kM4v,
         1,
         "Movies/Holiday Video.m4v",
         "MPEG-4 video file",
         {"Has Video"}},
        {112,
         {"Pilot", "Grey on Grey", "Grey on Grey, Season 1", "Drama", 2009, 1},
         kM4v,
         2,
         "TV Shows/Grey on Grey/Season 1/01 Pilot.m4v",
         "MPEG-4 video file",
         {"Has Video", "TV Show"}},
        {113,
         {"Episode 1", "Radio Silence", "Radio Silence", "Podcast", 2010, 1},
         kMp3,
         5,
         "Podcasts/Radio Silence/Episode 1.mp3",
         kMpeg,
         {"Podcast"}},
        {114,
         {"A Field Guide", "E. Author", "", "Nature", 2008, 0},
         kPdf,
         0,
         "Books/E. Author/A Field Guide.pdf",
         "PDF document",
         {}},
        {115,
         {"The Lighthouse Keeper", "E. Author", "", "Fiction", 2009, 0},
         kEpub,
         0,
         "Books/E. Author/The Lighthouse Keeper.epub",
         "EPUB document",
         {}},
    };
}

std::string FileBytes(const SampleTrack &track) {
    switch (track.format) {
        case Format::kMp3:
            return Mp3File(track.seconds, track.tags);
        case Format::kM4a:
            return M4aFile(track.seconds, track.tags);
        case Format::kM4v:
            return M4vFile(track.seconds, track.tags);
        case Format::kWav:
            return WavFile(track.seconds);
        case Format::kPdf:
            return PdfFile(track.tags.title);
        case Format::kEpub:
            return EpubFile({.title = track.tags.title,
                             .author = track.tags.artist,
                             .subject = track.tags.genre,
                             .date = std::to_string(track.tags.year)},
                            BookCover::kPage);
        case Format::kNoFile:
            break;
    }
    return {};
}

constexpr int kLibraryNumber = 1;

std::string PersistentId(int number) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "5A4D9E1E%08X", static_cast<unsigned>(number) * 2654435761U);
    return digits;
}

void AddText(XmlEntries &entries, std::string_view key, std::string_view text) {
    if (!text.empty()) entries.push_back({std::string(key), XmlText(text)});
}

void AddNumber(XmlEntries &entries, std::string_view key, std::int64_t number) {
    if (number != 0) entries.push_back({std::string(key), XmlInteger(number)});
}

XmlEntries Entries(const SampleTrack &track, const LibraryPlace &place, std::size_t size) {
    const bool video = track.format == Format::kM4v;
    const bool sound = track.format != Format::kPdf && track.format != Format::kEpub;
    XmlEntries entries{{"Track ID", XmlInteger(track.id)}};
    AddText(entries, "Name", track.tags.title);
    AddText(entries, "Artist", track.tags.artist);
    AddText(entries, "Album Artist", track.tags.artist);
    AddText(entries, "Album", track.tags.album);
    AddText(entries, "Genre", track.tags.genre);
    AddText(entries, "Kind", track.kind);
    AddNumber(entries, "Size", static_cast<std::int64_t>(size));
    AddNumber(entries, "Total Time", std::int64_t{track.seconds} * 1000);
    AddNumber(entries, "Track Number", track.tags.track);
    AddNumber(entries, "Year", track.tags.year);
    entries.push_back({"Date Modified", XmlDate("2013-05-04T10:20:30Z")});
    entries.push_back({"Date Added", XmlDate("2013-05-05T06:07:08Z")});
    AddNumber(entries, "Bit Rate", sound ? 32 : 0);
    AddNumber(entries, "Sample Rate", sound ? 44100 : 0);
    AddNumber(entries, "Video Width", video ? 48 : 0);
    AddNumber(entries, "Video Height", video ? 48 : 0);
    AddNumber(entries, "Play Count", track.id % 5);
    AddNumber(entries, "Rating", std::int64_t{20} * (track.id % 6));
    AddText(entries, "Persistent ID", PersistentId(track.id));
    for (const std::string_view flag : track.flags)
        entries.push_back({std::string(flag), XmlFlag(true)});
    AddText(entries, "Track Type", track.file.empty() ? "Remote" : "File");
    if (!track.file.empty()) AddText(entries, "Location", place.Location(place.media_folder / track.file));
    return entries;
}

LibraryPlaylist List(std::string name, int number, std::vector<std::int64_t> track_ids) {
    LibraryPlaylist list;
    list.name = std::move(name);
    list.playlist_id = number;
    list.persistent_id = PersistentId(number);
    list.track_ids = std::move(track_ids);
    return list;
}

LibraryPlaylist KindList(std::string name, int number, int kind, std::vector<std::int64_t> track_ids) {
    LibraryPlaylist list = List(std::move(name), number, std::move(track_ids));
    list.distinguished_kind = kind;
    return list;
}

LibraryPlaylist Inside(LibraryPlaylist list, int parent) {
    list.parent_persistent_id = PersistentId(parent);
    return list;
}

LibraryPlaylist AsFolder(LibraryPlaylist list) {
    list.folder = true;
    return list;
}

LibraryPlaylist AsSmart(LibraryPlaylist list) {
    list.smart = true;
    return list;
}

LibraryPlaylist MasterList() {
    LibraryPlaylist list = List("Library", 1000, {});
    list.master = true;
    for (const SampleTrack &track : Tracks())
        list.track_ids.push_back(track.id);
    return list;
}

std::vector<LibraryPlaylist> Lists() {
    constexpr int kRoadTrip = 1020;
    constexpr int kEvenings = 1022;
    return {
        MasterList(),
        KindList("Music", 1001, 4, {101, 102, 103, 104, 105, 106, 107, 108}),
        KindList("Movies", 1002, 2, {110}),
        KindList("TV Shows", 1003, 3, {112}),
        KindList("Podcasts", 1004, 10, {113}),
        KindList("Books", 1005, 5, {114, 115}),
        KindList("Genius", 1006, 26, {103, 104}),
        KindList("iTunes DJ", 1007, 22, {102, 105}),
        KindList("Purchased", 1008, 19, {106}),
        AsSmart(List("Recently Added", 1010, {106, 104, 101})),
        List("####!####", 1011, {101}),
        AsFolder(List("Road Trip", kRoadTrip, {101, 102, 104})),
        Inside(List("Day One", 1021, {101, 102}), kRoadTrip),
        AsFolder(Inside(List("Evenings", kEvenings, {104}), kRoadTrip)),
        Inside(List("Fireplace", 1023, {104}), kEvenings),
        List("Rain & Sun", 1030, {101, 103, 102}),
    };
}

void WriteArtwork(const LibraryPlace &place, int track, const std::string &cache_file) {
    const fs::path file = ArtworkCachePath(PersistentId(kLibraryNumber), PersistentId(track));
    WriteFile(place.library_xml.parent_path() / file, cache_file);
}

void WriteAllArtwork(const LibraryPlace &place) {
    WriteArtwork(place, sample_track::kMusic, ArtworkCacheFile({128, 256, 400}));
    WriteArtwork(place, sample_track::kSameAlbum, ArtworkCacheFile({128, 256, 400}));
    WriteArtwork(place, sample_track::kUnicode, ArtworkCacheFile({128}));
    WriteArtwork(place, sample_track::kRawArtwork, ArtworkCacheFile({128, 200}, CachePictures::kRaw));
}

}  // namespace

LibraryPlace MakeSampleLibrary(const fs::path &folder, PathStyle style) {
    LibraryPlace place = MakeLibraryPlace(folder, style);
    std::ofstream file(place.library_xml, std::ios::binary);
    LibraryXml xml(file);
    xml.UsualRoot(PersistentId(kLibraryNumber), place.Location(place.media_folder) + "/");
    for (const SampleTrack &track : Tracks()) {
        const std::string bytes = FileBytes(track);
        if (!bytes.empty()) WriteFile(place.media_folder / track.file, bytes);
        xml.Track(std::to_string(track.id), Entries(track, place, bytes.size()));
    }
    for (const LibraryPlaylist &list : Lists())
        xml.Playlist(list);
    xml.Finish();
    if (!file.flush()) throw std::runtime_error("cannot write " + place.library_xml.string());
    WriteAllArtwork(place);
    WriteLooseFiles(place);
    return place;
}
