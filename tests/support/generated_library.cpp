#include "tests/support/generated_library.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/library_xml.h"

namespace {

constexpr std::array<std::string_view, 32> kWords = {
    "River",   "Stone",  "Night",  "Señor",   "Glass",  "Winter",   "Engine",   "Paper",
    "Harbour", "Echo",   "Löwe",   "Signal",  "Amber",  "Field",    "Cinder",   "Mirror",
    "Ocean",   "Velvet", "R&B",    "Thunder", "Étoile", "Copper",   "Silent",   "Blue",
    "Tower",   "Garden", "Static", "Horse",   "Canyon", "Midnight", "Northern", "Sleep"};
constexpr std::array<std::string_view, 8> kGenres = {"Rock", "Pop",     "Jazz",  "Electronic",
                                                     "Folk", "Hip Hop", "Metal", "R&B/Soul"};

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
    std::string Date() {
        const std::array<int, 6> fields{5 + Below(15), 1 + Below(12), 1 + Below(28),
                                        Below(24),     Below(60),     Below(60)};
        char text[80];
        std::snprintf(text, sizeof text, "20%02d-%02d-%02dT%02d:%02d:%02dZ", fields[0], fields[1], fields[2],
                      fields[3], fields[4], fields[5]);
        return text;
    }
    std::string PersistentId() {
        char digits[17];
        std::snprintf(digits, sizeof digits, "%016llX", static_cast<unsigned long long>(engine_()));
        return digits;
    }

  private:
    std::mt19937_64 engine_;
};

XmlEntries TrackEntries(std::int64_t id, Draw &draw) {
    const std::string artist = draw.Words(2);
    const std::string album = draw.Words(3);
    const std::string name = draw.Words(1 + draw.Below(5));
    const int number = 1 + draw.Below(14);
    const std::string file = std::to_string(number) + " - " + artist + " - " + name + ".mp3";
    XmlEntries entries{
        {"Track ID", XmlInteger(id)},
        {"Name", XmlText(name)},
        {"Artist", XmlText(artist)},
        {"Album Artist", XmlText(artist)},
        {"Album", XmlText(album)},
        {"Genre", XmlText(kGenres[static_cast<std::size_t>(draw.Below(8))])},
        {"Kind", XmlText("MPEG audio file")},
        {"Size", XmlInteger(3000000 + draw.Below(9000000))},
        {"Total Time", XmlInteger(120000 + draw.Below(300000))},
        {"Track Number", XmlInteger(number)},
        {"Track Count", XmlInteger(14)},
        {"Year", XmlInteger(1965 + draw.Below(50))},
        {"Date Modified", XmlDate(draw.Date())},
        {"Date Added", XmlDate(draw.Date())},
        {"Bit Rate", XmlInteger(128 + 64 * draw.Below(4))},
        {"Sample Rate", XmlInteger(44100)},
        {"Play Count", XmlInteger(draw.Below(60))},
        {"Rating", XmlInteger(std::int64_t{20} * draw.Below(6))},
        {"Artwork Count", XmlInteger(1)},
        {"Persistent ID", XmlText(draw.PersistentId())},
        {"Track Type", XmlText("File")},
        {"Location", XmlText(LocationUrl("/Network/Music/" + artist + " - " + album + "/" + file))},
        {"File Folder Count", XmlInteger(-1)},
        {"Library Folder Count", XmlInteger(-1)}};
    if (draw.Below(4) == 0) entries.push_back({"Comments", XmlText(draw.Words(6 + draw.Below(30)))});
    return entries;
}

LibraryPlaylist WholeList(std::string name, int number, int tracks, Draw &draw) {
    LibraryPlaylist list{
        .name = std::move(name), .playlist_id = number, .persistent_id = draw.PersistentId()};
    for (int i = 0; i < tracks; ++i)
        list.track_ids.push_back(GeneratedTrackId(i));
    return list;
}

void WriteLists(LibraryXml &xml, const GeneratedLibraryOptions &options, Draw &draw) {
    int number = 10;
    LibraryPlaylist master = WholeList("Library", number++, options.tracks, draw);
    master.master = true;
    xml.Playlist(master);
    LibraryPlaylist music = WholeList("Music", number++, options.tracks, draw);
    music.distinguished_kind = 4;
    xml.Playlist(music);
    for (int i = 0; i < options.lists; ++i) {
        LibraryPlaylist list{.name = "List " + std::to_string(i + 1),
                             .playlist_id = number++,
                             .persistent_id = draw.PersistentId()};
        for (int k = 0; k < options.items && options.tracks > 0; ++k) {
            list.track_ids.push_back(GeneratedTrackId(draw.Below(options.tracks)));
        }
        xml.Playlist(list);
    }
}

}  // namespace

void GenerateLibrary(const std::filesystem::path &file, const GeneratedLibraryOptions &options) {
    std::ofstream out(file, std::ios::binary);
    Draw draw(options.seed);
    LibraryXml xml(out);
    xml.UsualRoot(draw.PersistentId(), LocationUrl("/Network/Music/"));
    for (int i = 0; i < options.tracks; ++i) {
        const std::int64_t id = GeneratedTrackId(i);
        xml.Track(std::to_string(id), TrackEntries(id, draw));
    }
    WriteLists(xml, options, draw);
    xml.Finish();
    if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}
