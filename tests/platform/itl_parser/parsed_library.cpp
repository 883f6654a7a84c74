#include "tests/platform/itl_parser/parsed_library.h"

#include <optional>
#include <sstream>

#include "platform/itl_parser/library_reader.h"

namespace {

class CountingSource : public core_foundation::MemorySource {
  public:
    CountingSource(std::string_view bytes, size_t &count) : MemorySource(bytes), count_(count) {}
    std::optional<size_t> Read(char *buffer, size_t size) override {
        const auto got = MemorySource::Read(buffer, size);
        count_ += got.value_or(0);
        return got;
    }

  private:
    size_t &count_;
};

}  // namespace

ParsedLibrary::ParsedLibrary(const std::string &bytes) {
    CountingSource source(bytes, bytes_read);
    valid = itl_parser::ReadLibrary(source, bytes.size(), content);
}

std::string Describe(const ParsedLibrary &library) {
    if (!library.valid) return "refused";
    std::ostringstream out;
    out << library.content.version << " " << library.content.persistent_id << "\n";
    for (const Track *track : library.content.tracks) {
        out << track->id << "|" << track->name << "|" << track->album << "|" << track->artist << "|"
            << track->genre << "|" << track->kind << "|" << track->date_modified << "|" << track->size << "|"
            << track->total_time << "|" << track->bit_rate << "|" << track->sample_rate << "|"
            << track->rating << "|" << track->location << "|" << track->persistent_id << "|"
            << track->play_count << "\n";
    }
    for (const Playlist *list : library.content.playlists) {
        out << list->name << "|" << list->smart_text << "|" << list->id << "|" << list->kind << ":";
        for (const int32_t id : list->items)
            out << " " << id;
        out << "\n";
    }
    return out.str();
}

std::string Describe(const std::string &bytes) {
    return Describe(ParsedLibrary(bytes));
}

ItlFile SmallLibrary(const ItlForm &form) {
    ItlFile file(form);
    file.AddTrack({.id = 101,
                   .texts = {{kItlName, "Café"},
                             {kItlAlbum, "Blue"},
                             {kItlArtist, "東京 😀"},
                             {kItlGenre, "Rock", 0},
                             {kItlKind, "na\xC3\xAFve", 0},
                             {kItlComments, "not read", 77},
                             {kItlLocation, "file://localhost/C:/Music/Caf%C3%A9.mp3"}},
                   .date_modified = 3422000000,
                   .size = 4000000,
                   .total_time = 180000,
                   .bit_rate = 256,
                   .sample_rate = 44100,
                   .play_count = 3,
                   .rating = 80,
                   .persistent_id = 0x1122334455667788,
                   .album = 7});
    file.AddTrack({.id = 102,
                   .texts = {{kItlName, "na\xEFve", 0}, {kItlAlbum, "Blue"}},
                   .size = 0x80000000,
                   .total_time = 2843833152,
                   .sample_rate = -1,
                   .album = 7});
    file.AddTrack({.id = 103, .rating = 20, .album = 7});
    file.AddAlbum(9, 100);
    file.AddAlbum(7, 60);
    file.AddPlaylist({.name = "####!####", .id = 901, .master = true, .items = {101, 102, 103}});
    file.AddPlaylist({.name = "Music", .kind = 4, .id = 902, .smart_info = "\x01\x02\x03", .items = {102}});
    file.AddPlaylist({.name = "Ж", .id = 903, .items = {103, 0, 101, 103, 999}});
    return file;
}

std::string SmallLibraryText(const ItlForm &form) {
    const bool has_albums = form.track_header >= 0xE0;
    const bool has_kinds = form.list_header >= 0x23A;
    const bool has_ids = form.list_header >= 0xD44;
    const auto id = [has_ids](int position) { return std::to_string((has_ids ? 901 : 104) + position); };
    return form.version +
           " A1B2C3D4E5F60718\n"
           "101|Café|Blue|東京 😀|Rock|naïve|3422000000|4000000|180000|256|44100|80|"
           "file://localhost/C:/Music/Caf%C3%A9.mp3|1122334455667788|3\n"
           "102|naïve|Blue||||0|-1|0|0|0|" +
           (has_albums ? "60" : "0") +
           "||0000000000000000|0\n"
           "103||||||0|0|0|0|0|20||0000000000000000|0\n"
           "####!####||" +
           id(0) + "|0: 101 102 103\nMusic|AQID|" + id(1) + (has_kinds ? "|4" : "|0") + ": 102\nЖ||" + id(2) +
           "|0: 103 101 103 999\n";
}
