#include "tests/support/generated_library.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/itl_file.h"
#include "tests/support/library_xml.h"

namespace {

constexpr std::array<std::string_view, 32> kWords = {
    "River",   "Stone",  "Night",  "Señor",   "Glass",  "Winter",   "Engine",   "Paper",
    "Harbour", "Echo",   "Löwe",   "Signal",  "Amber",  "Field",    "Cinder",   "Mirror",
    "Ocean",   "Velvet", "R&B",    "Thunder", "Étoile", "Copper",   "Silent",   "Blue",
    "Tower",   "Garden", "Static", "Horse",   "Canyon", "Midnight", "Northern", "Sleep"};
constexpr std::array<std::string_view, 8> kGenres = {"Rock", "Pop",     "Jazz",  "Electronic",
                                                     "Folk", "Hip Hop", "Metal", "R&B/Soul"};

constexpr int kFirstListId = 10;

// A moment of UTC: year of this century, month, day, hour, minute, second.
struct DrawnDate {
    std::array<int, 6> fields;

    std::string Text() const {
        char text[80];
        std::snprintf(text, sizeof text, "20%02d-%02d-%02dT%02d:%02d:%02dZ", fields[0], fields[1], fields[2],
                      fields[3], fields[4], fields[5]);
        return text;
    }
    std::uint32_t SecondsSince1904() const {
        using namespace std::chrono;
        const sys_days start = year{1904} / 1 / 1;
        const sys_days date = year{2000 + fields[0]} / fields[1] / fields[2];
        const seconds time = hours{fields[3]} + minutes{fields[4]} + seconds{fields[5]};
        return static_cast<std::uint32_t>((date - start + time).count());
    }
};

std::string HexId(std::uint64_t id) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llX", static_cast<unsigned long long>(id));
    return digits;
}

// The standard distributions differ between libraries; these draws are the same everywhere.
class Draw {
  public:
    explicit Draw(std::uint64_t seed) : engine_(seed) {}
    int Below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(limit)); }
    std::string Words(int count) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            if (i > 0) text += ' ';
            text += kWords[static_cast<std::size_t>(Below(static_cast<int>(kWords.size())))];
        }
        return text;
    }
    // Braces draw from left to right; arguments of a call would not.
    DrawnDate Date() {
        return {{5 + Below(15), 1 + Below(12), 1 + Below(28), Below(24), Below(60), Below(60)}};
    }
    std::uint64_t Number() { return engine_(); }

  private:
    std::mt19937_64 engine_;
};

// What both forms of the file say, drawn in this order.
struct DrawnTrack {
    std::int64_t id;
    std::string artist;
    std::string album;
    std::string name;
    int number;
    std::string_view genre;
    int size;
    int total_time;
    int year;
    DrawnDate date_modified;
    DrawnDate date_added;
    int bit_rate;
    int play_count;
    int rating;
    std::uint64_t persistent_id;
    std::string comments;

    std::string Location() const {
        return LocationUrl("/Network/Music/" + artist + " - " + album + "/" + std::to_string(number) + " - " +
                           artist + " - " + name + ".mp3");
    }
};

// Braces draw from left to right.
DrawnTrack DrawTrack(std::int64_t id, Draw &draw) {
    DrawnTrack track{.id = id,
                     .artist = draw.Words(2),
                     .album = draw.Words(3),
                     .name = draw.Words(1 + draw.Below(5)),
                     .number = 1 + draw.Below(14),
                     .genre = kGenres[static_cast<std::size_t>(draw.Below(8))],
                     .size = 3000000 + draw.Below(9000000),
                     .total_time = 120000 + draw.Below(300000),
                     .year = 1965 + draw.Below(50),
                     .date_modified = draw.Date(),
                     .date_added = draw.Date(),
                     .bit_rate = 128 + 64 * draw.Below(4),
                     .play_count = draw.Below(60),
                     .rating = 20 * draw.Below(6),
                     .persistent_id = draw.Number(),
                     .comments = {}};
    if (draw.Below(4) == 0) track.comments = draw.Words(6 + draw.Below(30));
    return track;
}

XmlEntries TrackEntries(const DrawnTrack &track) {
    XmlEntries entries{{"Track ID", XmlInteger(track.id)},
                       {"Name", XmlText(track.name)},
                       {"Artist", XmlText(track.artist)},
                       {"Album Artist", XmlText(track.artist)},
                       {"Album", XmlText(track.album)},
                       {"Genre", XmlText(track.genre)},
                       {"Kind", XmlText("MPEG audio file")},
                       {"Size", XmlInteger(track.size)},
                       {"Total Time", XmlInteger(track.total_time)},
                       {"Track Number", XmlInteger(track.number)},
                       {"Track Count", XmlInteger(14)},
                       {"Year", XmlInteger(track.year)},
                       {"Date Modified", XmlDate(track.date_modified.Text())},
                       {"Date Added", XmlDate(track.date_added.Text())},
                       {"Bit Rate", XmlInteger(track.bit_rate)},
                       {"Sample Rate", XmlInteger(44100)},
                       {"Play Count", XmlInteger(track.play_count)},
                       {"Rating", XmlInteger(track.rating)},
                       {"Artwork Count", XmlInteger(1)},
                       {"Persistent ID", XmlText(HexId(track.persistent_id))},
                       {"Track Type", XmlText("File")},
                       {"Location", XmlText(track.Location())},
                       {"File Folder Count", XmlInteger(-1)},
                       {"Library Folder Count", XmlInteger(-1)}};
    if (!track.comments.empty()) entries.push_back({"Comments", XmlText(track.comments)});
    return entries;
}

ItlTrack ItlTrackOf(const DrawnTrack &track) {
    ItlTrack record{.id = static_cast<std::uint32_t>(track.id),
                    .texts = {{kItlName, track.name},
                              {kItlArtist, track.artist},
                              {kItlAlbumArtist, track.artist},
                              {kItlAlbum, track.album},
                              {kItlGenre, std::string(track.genre)},
                              {kItlKind, "MPEG audio file"},
                              {kItlLocation, track.Location()}},
                    .date_modified = track.date_modified.SecondsSince1904(),
                    .size = static_cast<std::uint64_t>(track.size),
                    .total_time = static_cast<std::uint32_t>(track.total_time),
                    .track_number = static_cast<std::uint32_t>(track.number),
                    .year = static_cast<std::uint32_t>(track.year),
                    .bit_rate = static_cast<std::uint32_t>(track.bit_rate),
                    .sample_rate = 44100,
                    .play_count = static_cast<std::uint32_t>(track.play_count),
                    .rating = static_cast<std::uint8_t>(track.rating),
                    .date_added = track.date_added.SecondsSince1904(),
                    .persistent_id = track.persistent_id};
    if (!track.comments.empty()) record.texts.push_back({kItlComments, track.comments});
    return record;
}

LibraryPlaylist WholeList(std::string name, int number, int tracks, Draw &draw) {
    LibraryPlaylist list{
        .name = std::move(name), .playlist_id = number, .persistent_id = HexId(draw.Number())};
    for (int i = 0; i < tracks; ++i)
        list.track_ids.push_back(GeneratedTrackId(i));
    return list;
}

// Hands each list on as it is drawn.
template <typename Write>
void DrawLists(const GeneratedLibraryOptions &options, Draw &draw, Write write) {
    int number = kFirstListId;
    LibraryPlaylist master = WholeList("Library", number++, options.tracks, draw);
    master.master = true;
    write(master);
    LibraryPlaylist music = WholeList("Music", number++, options.tracks, draw);
    music.distinguished_kind = 4;
    write(music);
    for (int i = 0; i < options.lists; ++i) {
        LibraryPlaylist list{.name = "List " + std::to_string(i + 1),
                             .playlist_id = number++,
                             .persistent_id = HexId(draw.Number())};
        for (int k = 0; k < options.items && options.tracks > 0; ++k) {
            list.track_ids.push_back(GeneratedTrackId(draw.Below(options.tracks)));
        }
        write(list);
    }
}

ItlPlaylist ItlPlaylistOf(const LibraryPlaylist &list) {
    ItlPlaylist record{.name = list.master ? "####!####" : list.name,
                       .kind = static_cast<std::uint8_t>(list.distinguished_kind.value_or(0)),
                       .id = static_cast<std::uint32_t>(list.playlist_id),
                       .master = list.master};
    for (const std::int64_t id : list.track_ids)
        record.items.push_back(static_cast<std::uint32_t>(id));
    return record;
}

void WriteXml(std::ostream &out, const GeneratedLibraryOptions &options) {
    Draw draw(options.seed);
    LibraryXml xml(out);
    xml.UsualRoot(HexId(draw.Number()), LocationUrl("/Network/Music/"));
    for (int i = 0; i < options.tracks; ++i) {
        const DrawnTrack track = DrawTrack(GeneratedTrackId(i), draw);
        xml.Track(std::to_string(track.id), TrackEntries(track));
    }
    DrawLists(options, draw, [&xml](const LibraryPlaylist &list) { xml.Playlist(list); });
    xml.Finish();
}

void WriteItl(std::ostream &out, const GeneratedLibraryOptions &options) {
    Draw draw(options.seed);
    ItlFile itl(ItlForm12());
    itl.persistent_id = draw.Number();
    for (int i = 0; i < options.tracks; ++i)
        itl.AddTrack(ItlTrackOf(DrawTrack(GeneratedTrackId(i), draw)));
    DrawLists(options, draw, [&itl](const LibraryPlaylist &list) { itl.AddPlaylist(ItlPlaylistOf(list)); });
    out << itl.Bytes();
}

}  // namespace

void GenerateLibrary(const std::filesystem::path &file, const GeneratedLibraryOptions &options) {
    std::ofstream out(file, std::ios::binary);
    if (file.extension() == ".itl") {
        WriteItl(out, options);
    } else {
        WriteXml(out, options);
    }
    if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}
