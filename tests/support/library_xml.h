#ifndef TESTS_SUPPORT_LIBRARY_XML_H
#define TESTS_SUPPORT_LIBRARY_XML_H

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/property_list_xml.h"

// A list as iTunes knows it. Fields that are empty or false leave their key out.
struct LibraryPlaylist {
    std::string name{};
    int playlist_id = 0;
    std::string persistent_id{};
    std::string parent_persistent_id{};
    std::optional<int> distinguished_kind{};
    bool master = false;
    bool folder = false;
    bool smart = false;
    std::vector<std::int64_t> track_ids{};
};

// Writes an "iTunes Music Library.xml" in the layout of the real ones, from front to back, so that a library
// of any size costs no memory: first Root for each key, then Track for each track, then Playlist for each
// list, then Finish.
class LibraryXml {
  public:
    // The stream must outlive the writer.
    explicit LibraryXml(std::ostream &out);

    void Root(const XmlEntry &entry);
    // The keys at the head of every library: versions, media folder and persistent id.
    void UsualRoot(std::string_view persistent_id, std::string_view media_folder_url);
    // `key` names the track in "Tracks".
    void Track(std::string_view key, const XmlEntries &entries);
    void Playlist(const LibraryPlaylist &playlist);
    // A list of any shape; `items` is the finished XML inside "Playlist Items", none without it.
    void RawPlaylist(const XmlEntries &entries, const std::optional<std::string> &items);
    void Finish();

  private:
    enum class Section { kRoot, kTracks, kPlaylists };
    void Enter(Section section);

    std::ostream &out_;
    Section section_ = Section::kRoot;
};

// One element of "Playlist Items".
std::string PlaylistItem(const std::string &track_id_value);

// The file URL of an absolute path with forward slashes ("/music/a b.mp3" or "C:/music/a b.mp3"), escaped as
// iTunes does.
std::string LocationUrl(std::string_view path);

#endif
