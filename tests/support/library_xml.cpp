#include "tests/support/library_xml.h"

namespace {

// What iTunes puts under "Smart Info" and "Smart Criteria" begins like this; the driver only asks whether it
// is there.
constexpr std::string_view kSmartInfo("\x01\x01\x00\x03\x00\x00\x00\x02\x00\x00\x00\x19", 12);
constexpr std::string_view kSmartCriteria("SLst\x00\x01\x00\x01\x00\x00\x00\x01", 12);
constexpr int kEntryDepth = 3;

}  // namespace

LibraryXml::LibraryXml(std::ostream &out) : out_(out) {
    out_ << kPropertyListHead << "<dict>\n";
}

void LibraryXml::Enter(Section section) {
    if (section_ == Section::kRoot && section != Section::kRoot) {
        out_ << "\t<key>Tracks</key>\n\t<dict>\n";
        section_ = Section::kTracks;
    }
    if (section_ == Section::kTracks && section == Section::kPlaylists) {
        out_ << "\t</dict>\n\t<key>Playlists</key>\n\t<array>\n";
        section_ = Section::kPlaylists;
    }
}

void LibraryXml::Root(const XmlEntry &entry) {
    out_ << XmlLine(entry, 1);
}

void LibraryXml::UsualRoot(std::string_view persistent_id, std::string_view media_folder_url) {
    Root({"Major Version", XmlInteger(1)});
    Root({"Minor Version", XmlInteger(1)});
    Root({"Application Version", XmlText("10.0.1")});
    Root({"Features", XmlInteger(5)});
    Root({"Show Content Ratings", XmlFlag(true)});
    Root({"Music Folder", XmlText(media_folder_url)});
    Root({"Library Persistent ID", XmlText(persistent_id)});
}

void LibraryXml::Track(std::string_view key, const XmlEntries &entries) {
    Enter(Section::kTracks);
    out_ << "\t\t<key>" << EscapeXml(key) << "</key>\n\t\t<dict>\n";
    for (const XmlEntry &entry : entries)
        out_ << XmlLine(entry, kEntryDepth);
    out_ << "\t\t</dict>\n";
}

void LibraryXml::Playlist(const LibraryPlaylist &playlist) {
    XmlEntries entries;
    if (!playlist.name.empty()) entries.push_back({"Name", XmlText(playlist.name)});
    if (playlist.master) entries.push_back({"Master", XmlFlag(true)});
    entries.push_back({"Playlist ID", XmlInteger(playlist.playlist_id)});
    if (!playlist.persistent_id.empty()) {
        entries.push_back({"Playlist Persistent ID", XmlText(playlist.persistent_id)});
    }
    if (!playlist.parent_persistent_id.empty()) {
        entries.push_back({"Parent Persistent ID", XmlText(playlist.parent_persistent_id)});
    }
    if (playlist.distinguished_kind) {
        entries.push_back({"Distinguished Kind", XmlInteger(*playlist.distinguished_kind)});
    }
    if (playlist.master) entries.push_back({"Visible", XmlFlag(false)});
    entries.push_back({"All Items", XmlFlag(true)});
    if (playlist.folder) entries.push_back({"Folder", XmlFlag(true)});
    if (playlist.smart) {
        entries.push_back({"Smart Info", XmlData(kSmartInfo, kEntryDepth)});
        entries.push_back({"Smart Criteria", XmlData(kSmartCriteria, kEntryDepth)});
    }
    std::optional<std::string> items;
    if (!playlist.track_ids.empty()) items.emplace();
    for (const std::int64_t id : playlist.track_ids)
        *items += PlaylistItem(XmlInteger(id));
    RawPlaylist(entries, items);
}

void LibraryXml::RawPlaylist(const XmlEntries &entries, const std::optional<std::string> &items) {
    Enter(Section::kPlaylists);
    out_ << "\t\t<dict>\n";
    for (const XmlEntry &entry : entries)
        out_ << XmlLine(entry, kEntryDepth);
    if (items) out_ << "\t\t\t<key>Playlist Items</key>\n\t\t\t<array>\n" << *items << "\t\t\t</array>\n";
    out_ << "\t\t</dict>\n";
}

void LibraryXml::Finish() {
    Enter(Section::kPlaylists);
    out_ << "\t</array>\n</dict>\n" << kPropertyListTail;
}

std::string PlaylistItem(const std::string &track_id_value) {
    return "\t\t\t\t<dict>\n\t\t\t\t\t<key>Track ID</key>" + track_id_value + "\n\t\t\t\t</dict>\n";
}

std::string LocationUrl(std::string_view path) {
    constexpr std::string_view kPlain = "-_.!~*'()/:@&=+$,";
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string url = path.starts_with('/') ? "file://localhost" : "file://localhost/";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool letter_or_digit =
            (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (letter_or_digit || kPlain.find(c) != std::string_view::npos) {
            url += c;
        } else {
            url += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return url;
}
