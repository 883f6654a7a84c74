#include "tests/library/differential_generator.h"

#include <array>
#include <cstdio>
#include <random>
#include <sstream>
#include <string_view>

#include "tests/support/library_xml.h"

namespace {

constexpr std::array<std::string_view, 32> kTrackKeys = {
    "Name",        "Artist",     "Album",         "Album Artist", "Composer",      "Genre",
    "Kind",        "Size",       "Total Time",    "Track Number", "Year",          "Bit Rate",
    "Sample Rate", "Comments",   "Video Width",   "Video Height", "Play Count",    "Rating",
    "Movie",       "Purchased",  "Persistent ID", "Location",     "Date Modified", "Date Added",
    "Has Video",   "TV Show",    "Podcast",       "Track ID",     "Sort Name",     "Artwork Count",
    "Skip Date",   "Apple Music"};

// Finished XML of single characters: plain ones, every spelling of the five that XML escapes, control
// characters that iTunes lets through, letters of two to four bytes, composed and decomposed.
constexpr std::array<std::string_view, 34> kCharacters = {
    "a",        "Z",     "0",         " ",      "\t",     "\n",     "\"",        "'",
    "%",        "%25",   "/",         "\\",     ".",      "&amp;",  "&#38;",     "&#x26;",
    "&lt;",     "&#60;", "&gt;",      "&quot;", "&apos;", ">",      "\x01",      "\x1F",
    "\x7F",     "é",     "e\xCC\x81", "日",     "😀",      "&#233;", "&#x1F600;", "<![CDATA[<&>]]>",
    "\xC2\xA0", ";"};

constexpr std::array<std::string_view, 14> kLocations = {"file://localhost/music/a.mp3",
                                                         "file://localhost/C:/a%20b.m4a",
                                                         "file:///music/b.mpeg4",
                                                         "file:///",
                                                         "file://localhost/no.dir/file",
                                                         "music/%C3%A9.flac",
                                                         "http://host/stream",
                                                         "file:///x%2",
                                                         "file:///x%zz.mp3",
                                                         "FILE:///upper.MP3",
                                                         "file:///100%%.wav",
                                                         "file:///b.EPUB",
                                                         "file:///b.pdf",
                                                         "file:///dot."};

constexpr std::array<std::string_view, 12> kIntegers = {"0",
                                                        "1",
                                                        "-1",
                                                        "42",
                                                        "2147483648",
                                                        "-2147483649",
                                                        "9223372036854775807",
                                                        "-9223372036854775808",
                                                        "007",
                                                        "9223372036854775808",
                                                        "100",
                                                        "80"};

constexpr std::array<std::string_view, 7> kReals = {"0", "3", "-2", "2.5", "1e3", "0.125", "1e30"};

std::string Element(const std::string &name, const std::string &content) {
    std::string element = "<";
    element.append(name).append(">").append(content).append("</").append(name).append(">");
    return element;
}

std::string Numbered(const char *prefix, int number) {
    return std::string(prefix).append(std::to_string(number));
}

class OddLibrary {
  public:
    explicit OddLibrary(std::uint64_t seed) : engine_(seed) {}

    std::string Write() {
        std::ostringstream out;
        LibraryXml xml(out);
        if (Chance(80)) xml.Root({"Library Persistent ID", Value()});
        if (Chance(80)) xml.Root({"Application Version", Value()});
        for (int id = 1; id <= kTracks; ++id)
            xml.Track(std::to_string(id), Track());
        for (int i = 0; i < kLists; ++i) {
            if (i == master_place_) WriteMaster(xml);
            WriteList(xml);
        }
        xml.Finish();
        return out.str();
    }

  private:
    static constexpr int kTracks = 40;
    static constexpr int kLists = 24;

    int Below(std::size_t limit) { return static_cast<int>(engine_() % limit); }
    bool Chance(int percent) { return Below(100) < percent; }
    template <typename List>
    std::string Pick(const List &list) {
        return std::string(list[static_cast<std::size_t>(Below(list.size()))]);
    }

    std::string Text() {
        std::string text;
        for (int length = Below(12); length > 0; --length)
            text += Pick(kCharacters);
        return Element("string", text);
    }

    std::string Date() {
        const std::array<int, 6> fields{1960 + Below(100), 1 + Below(12), 1 + Below(28),
                                        Below(24),         Below(60),     Below(60)};
        char text[80];
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", fields[0], fields[1], fields[2],
                      fields[3], fields[4], fields[5]);
        return XmlDate(text);
    }

    std::string Data() {
        std::string bytes;
        for (int length = Below(120); length > 0; --length)
            bytes += static_cast<char>(Below(256));
        return XmlData(Chance(10) ? std::string() : bytes, 3);
    }

    std::string Value() {
        switch (Below(12)) {
            case 0:
                return Element("integer", Pick(kIntegers));
            case 1:
                return XmlReal(Pick(kReals));
            case 2:
                return XmlFlag(Chance(50));
            case 3:
                return Date();
            case 4:
                return Data();
            case 5:
                return Element("array", Text());
            case 6:
                return Element("dict", Element("key", "x") + Text());
            case 7:
                return "<string/>";
            default:
                return Text();
        }
    }

    // Mostly what belongs to the key, so that classification and file names meet sensible values too.
    std::string ValueOf(std::string_view key) {
        if (Chance(30)) return Value();
        if (key == "Location") return XmlText(Pick(kLocations));
        if (key == "Persistent ID") return XmlText(Numbered("T", Below(60)));
        if (key == "Movie" || key == "Has Video" || key == "TV Show" || key == "Podcast") {
            return Chance(20) ? XmlText(Chance(50) ? "TRUE" : "yes") : XmlFlag(Chance(50));
        }
        return Chance(50) ? Element("integer", Pick(kIntegers)) : Text();
    }

    XmlEntries Track() {
        const int share = 10 + Below(90);
        XmlEntries entries;
        for (const std::string_view key : kTrackKeys) {
            if (Chance(share)) entries.push_back({std::string(key), ValueOf(key)});
        }
        return entries;
    }

    // Ids of tracks, of none, and what is no number; now and then the same twice.
    std::string Items() {
        std::string items;
        for (int count = Below(15); count > 0; --count) {
            const int id = 1 + Below(kTracks + 5);
            items += PlaylistItem(Chance(90) ? XmlInteger(id) : Value());
        }
        return items + (Chance(10) ? "<string>no item</string>" : "");
    }

    // Books are taken into a list once only: what a second entry of the same book adds is nobody's business.
    std::string ItemsOnce() {
        std::string items;
        for (int id = 1; id <= kTracks; ++id) {
            if (Chance(20)) items += PlaylistItem(XmlInteger(id));
        }
        return items;
    }

    void WriteMaster(LibraryXml &xml) {
        std::string items;
        for (int id = 1; id <= kTracks; ++id)
            items += PlaylistItem(XmlInteger(id));
        xml.RawPlaylist({{"Name", XmlText("Master List")}, {"Master", Chance(80) ? XmlFlag(true) : Value()}},
                        items);
    }

    // Parents stand before or after their lists, are tracks or the list itself, or do not exist.
    std::string AnyPersistentId() {
        if (Chance(20)) return XmlText(Numbered("T", Below(60)));
        return XmlText(Numbered("L", Below(kLists)));
    }

    std::string Kind() {
        static constexpr std::array<int, 20> kKinds = {0,  2,  3,  4,  6,  10, 18, 19,  22, 26,
                                                       31, 48, 57, 58, 59, 17, 65, 200, -1, 2};
        if (!book_list_done_ && Chance(10)) {
            book_list_done_ = true;
            return "5";
        }
        return std::to_string(kKinds[static_cast<std::size_t>(Below(kKinds.size()))]);
    }

    void WriteList(LibraryXml &xml) {
        XmlEntries entries;
        bool books = false;
        if (Chance(90)) entries.push_back({"Name", Chance(10) ? XmlText("####!####") : ListName()});
        if (Chance(5)) entries.push_back({"Master", Value()});
        if (Chance(90)) entries.push_back({"Playlist Persistent ID", AnyPersistentId()});
        if (Chance(30)) entries.push_back({"Parent Persistent ID", Chance(90) ? AnyPersistentId() : Value()});
        if (Chance(50)) {
            const std::string kind = Kind();
            books = kind == "5";
            entries.push_back(
                {"Distinguished Kind", Chance(80) ? Element("integer", kind) : XmlText(kind + " x")});
        }
        if (Chance(30)) entries.push_back({"Folder", Chance(80) ? XmlFlag(Chance(80)) : Value()});
        if (Chance(30)) entries.push_back({"Smart Info", Chance(80) ? Data() : Value()});
        xml.RawPlaylist(entries, books ? ItemsOnce() : Items());
    }

    // Short names, so that some lists share one.
    std::string ListName() { return Chance(50) ? Text() : XmlText(Numbered("List ", Below(10))); }

    std::mt19937_64 engine_;
    const int master_place_ = Below(kLists);
    bool book_list_done_ = false;
};

}  // namespace

std::string GenerateOddLibrary(std::uint64_t seed) {
    return OddLibrary(seed).Write();
}
