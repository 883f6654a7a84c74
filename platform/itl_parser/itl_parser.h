#ifndef PLATFORM_ITL_PARSER_ITL_PARSER_H
#define PLATFORM_ITL_PARSER_ITL_PARSER_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What "iTunes Library.itl" says of one track. Texts are UTF-8 and followed by a NUL; one that the file does
// not have is empty.
struct Track {
    int32_t id = 0;
    std::string_view name = "";
    std::string_view album = "";
    std::string_view artist = "";
    std::string_view genre = "";
    std::string_view kind = "";      // in the user's language
    int64_t date_modified = 0;       // seconds since 1904-01-01 in the local time of the user's machine
    int32_t size = 0;                // bytes; -1: ask the file
    int32_t total_time = 0;          // milliseconds
    int32_t bit_rate = 0;            // kbit/s
    int32_t sample_rate = 0;         // Hz
    int32_t rating = 0;              // 0 to 100; of the album where the track has none
    std::string_view location = "";  // a file URL
    std::string_view persistent_id = "";
    int32_t play_count = 0;
};

struct Playlist {
    std::string_view name = "";
    std::string_view smart_text = "";  // the settings of a smart list in Base64, else empty
    int32_t id = 0;                    // unique, but another load may give another
    int32_t kind = 0;                  // the distinguished kind, 0 for a list of the user
    std::vector<int32_t> items;        // track ids, in list order
};

namespace itl_parser {
struct LibraryContent;
}

// Reads "iTunes Library.itl", the library file that is left when no XML file can be read. Owns what it gives
// out.
class ITLParser {
  public:
    // `path` is UTF-8. A bad file shows only in isValid.
    explicit ITLParser(const char *path);
    ~ITLParser();
    ITLParser(const ITLParser &) = delete;
    ITLParser &operator=(const ITLParser &) = delete;

    // True when the whole file was read and nothing in it was damaged or unknown. Else the others give empty
    // texts and lists.
    bool isValid() const { return valid_; }
    const std::string &persistentId() const;
    const std::string &iTunesVersion() const;
    // The same lists at every call, in the order of the file.
    const std::vector<Track *> &tracks() const;
    const std::vector<Playlist *> &playlists() const;

  private:
    bool valid_ = false;
    std::unique_ptr<itl_parser::LibraryContent> content_;  // never null
};

#endif
