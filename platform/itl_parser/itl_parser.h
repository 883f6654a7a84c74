#ifndef PLATFORM_ITL_PARSER_ITL_PARSER_H
#define PLATFORM_ITL_PARSER_ITL_PARSER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// What "iTunes Library.itl" says of one track. Texts are the file's own bytes.
struct Track {
    int32_t id = 0;
    std::string name;
    std::string album;
    std::string artist;
    std::string genre;
    std::string kind;
    int64_t date_modified = 0;
    int32_t size = 0;  // bytes; -1: ask the file
    int32_t total_time = 0;
    int32_t bit_rate = 0;
    int32_t sample_rate = 0;
    int32_t rating = 0;
    std::string location;  // a file URL
    std::string persistent_id;
    int32_t play_count = 0;
};

struct Playlist {
    std::string name;
    std::string smart_text;
    int32_t id = 0;
    int32_t kind = 0;            // the distinguished kind, 0 for a list of the user
    std::vector<int32_t> items;  // track ids, in list order
};

// Reads "iTunes Library.itl", the library file that is left when no XML file can be read. Owns what it gives
// out.
class ITLParser {
  public:
    // `path` is UTF-8. A bad file shows only in isValid.
    explicit ITLParser(const char *path);
    virtual ~ITLParser() = default;
    ITLParser(const ITLParser &) = delete;
    ITLParser &operator=(const ITLParser &) = delete;

    // True when the file was read. Files of this format are not read yet, so no file is valid.
    bool isValid() const { return valid_; }
    const std::string &persistentId() const { return persistent_id_; }
    const std::string &iTunesVersion() const { return itunes_version_; }
    // The same lists at every call.
    const std::vector<std::unique_ptr<Track>> &tracks() const { return tracks_; }
    const std::vector<std::unique_ptr<Playlist>> &playlists() const { return playlists_; }

  protected:
    bool valid_ = false;
    std::string persistent_id_;
    std::string itunes_version_;
    std::vector<std::unique_ptr<Track>> tracks_;
    std::vector<std::unique_ptr<Playlist>> playlists_;
};

#endif
