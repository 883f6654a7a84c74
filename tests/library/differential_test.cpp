// The tree of any library is the one that its rules give, told one after another and without any index.
#include <gtest/gtest.h>
#include <strings.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <sstream>

#include "content/plist_values.h"
#include "library/track_import.h"
#include "tests/content/media_tree.h"
#include "tests/library/loaded_library.h"

namespace {

namespace fs = std::filesystem;
using Text = std::optional<std::string>;

// Keys of a track in the XML file, and its attributes, in the same order.
constexpr const char *kKeys[] = {
    "Name",        "Artist",    "Album",         "Album Artist", "Composer",      "Genre",
    "Kind",        "Size",      "Total Time",    "Track Number", "Year",          "Bit Rate",
    "Sample Rate", "Comments",  "Video Width",   "Video Height", "Play Count",    "Rating",
    "Movie",       "Purchased", "Persistent ID", "Location",     "Date Modified", "Date Added",
    "Has Video",   "TV Show",   "Podcast"};
constexpr const char *kAttributes[] = {
    "name",     "artist",   "album",      "album_artist", "composer",  "genre",       "kind",
    "st_size",  "duration", "track_num",  "year",         "bit_rate",  "sample_rate", "comment",
    "width",    "height",   "plays",      "rating",       "is_movie",  "purchased",   "persistent_id",
    "location", "st_mtime", "st_addtime", "has_video",    "is_tvshow", "is_podcast"};

// Where a list goes by its Distinguished Kind; an empty name stands for the list's own.
struct ListPlace {
    int number, root, category, subcategory;
    const char *name;
};
constexpr ListPlace kListPlaces[] = {{2, 0, 3, 30, "movie"}, {3, 0, 3, 31, "tvshow"},  {4, 0, 2, 20, "music"},
                                     {5, 0, 5, 50, "book"},  {10, 0, 3, 9, "podcast"}, {18, 0, 6, 60, "app"},
                                     {19, 0, 1, 11, ""},     {22, 2, 1, 13, ""},       {26, 1, 1, 12, ""},
                                     {31, 0, 1, 10, ""},     {48, 0, 3, 30, "movie"}};

// Grows the tree of a library under a bare root.
class SlowTree : public BareTree {
  public:
    explicit SlowTree(CFTypeRef library) {
        AddAttribute(driver.root, "terminal_type", "iTunes");
        Set(driver.root, "persistent_id", PlistValueText(library, "Library Persistent ID", 0));
        Set(driver.root, "application_version", PlistValueText(library, "Application Version", 0));
        for (const int root : {0, 1, 2})
            Root(root)->subcategory = std::array{1, 12, 2}[static_cast<size_t>(root)];
        TrackImportRoom entries;
        if (const void *dictionary = PlistValue(library, "Tracks"); IsDictionary(dictionary))
            ReadEntries(static_cast<CFDictionaryRef>(dictionary), entries);
        for (size_t i = 0; i < entries.keys.size(); ++i) {
            if (const auto id = CFStringToUtf8(static_cast<CFStringRef>(entries.keys[i])))
                ReadTrack(AddTrack(*id, ""), entries.values[i]);
        }
        ForEach(PlistValue(library, "Playlists"), [this](CFTypeRef list) { ReadList(list); });
        for (int32_t i = 0; master_ != nullptr && i < ChildCount(master_); ++i) {
            DriverPath *film = ChildAt(master_, i);
            if (film->category != 3 || film->subcategory != 30) continue;
            DriverPath *movies = LastUnderLibrary(30);
            if (movies == nullptr) movies = Hang(Root(0), "movie", 3, 30);
            bool is_there = false;
            for (int32_t at = 0; at < ChildCount(movies); ++at)
                is_there |= ChildAt(movies, at) == film;
            if (!is_there) HoldTrack(movies, std::string(*FindAttribute(film, "id")));
        }
        // The roots that scans of folders make, which find nothing here, where no list has made them.
        if (LastUnderLibrary(21) == nullptr) Hang(Root(0), "ringtone", 2, 21);
        if (LastUnderLibrary(50) == nullptr) Hang(Root(0), "Books", 5, 50);
        if (LastUnderLibrary(60) == nullptr) Hang(Root(0), "app", 6, 60);
    }

  private:
    static void Set(DriverPath *node, const char *key, const Text &text) {
        if (text) AddAttribute(node, key, text->c_str());
    }
    DriverPath *Hang(DriverPath *parent, const std::string &name, int category, int subcategory) {
        LoosePath node = CreateDriverPath(&driver, node_kind::kFolder, category, subcategory);
        if (parent != nullptr) return AppendChild(parent, name.c_str(), std::move(node));
        return driver.unnamed_lists.emplace_back(node.release());
    }
    DriverPath *Root(int32_t number) const { return ChildAt(driver.root, number); }

    template <typename Action>
    static void ForEach(CFTypeRef array, Action action) {
        for (CFIndex i = 0; IsArray(array) && i < CFArrayGetCount(static_cast<CFArrayRef>(array)); ++i)
            action(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array), i));
    }

    DriverPath *LastUnderLibrary(int subcategory) const {
        DriverPath *last = nullptr;
        for (int32_t i = 0; i < ChildCount(Root(0)); ++i)
            last = ChildAt(Root(0), i)->subcategory == subcategory ? ChildAt(Root(0), i) : last;
        return last;
    }

    // Depth first, the node itself included.
    static DriverPath *FindByPersistentId(DriverPath *start, const std::string &id) {
        DriverPath *found = FindAttribute(start, "persistent_id") == id ? start : nullptr;
        for (int32_t i = 0; found == nullptr && i < ChildCount(start); ++i)
            found = FindByPersistentId(ChildAt(start, i), id);
        return found;
    }

    static void ReadTrack(DriverPath *track, CFTypeRef entry) {
        if (!IsDictionary(entry)) return;
        for (size_t i = 0; i < std::size(kKeys); ++i) {
            const bool is_location = kKeys[i] == std::string("Location");
            Set(track, kAttributes[i], PlistValueText(entry, kKeys[i], is_location ? kTextIsLocation : 0));
        }
        const auto is_true = [&](const char *key) {
            return strcasecmp(std::string(FindAttribute(track, key).value_or("")).c_str(), "true") == 0;
        };
        track->subcategory = 20;
        if (is_true("is_movie") || is_true("has_video")) track->subcategory = 30;
        if (is_true("is_tvshow")) track->subcategory = 31;
        if (is_true("is_podcast")) track->subcategory = 9;
        track->category = track->subcategory == 20 ? 2 : 3;
    }

    void ReadList(CFTypeRef list) {
        const auto text = [list](const char *key) { return PlistValueText(list, key, 0); };
        const int number = std::atoi(text("Distinguished Kind").value_or("0").c_str());
        const bool is_left_out = number == 6 || (number >= 57 && number <= 59);
        if (!IsDictionary(list) || text("Name") == "####!####" || is_left_out) return;
        ListPlace place{number, 2, 1, text("Smart Info") ? 3 : text("Folder") ? 5 : 4, ""};
        for (const ListPlace &special : kListPlaces)
            place = special.number == number ? special : place;
        const Text name = *place.name == '\0' ? text("Name") : place.name;
        const auto parent_id = text("Parent Persistent ID");
        DriverPath *node = number == 2 || number == 48 ? LastUnderLibrary(30) : nullptr;
        if (node == nullptr) {
            DriverPath *parent = parent_id ? FindByPersistentId(driver.root, *parent_id) : nullptr;
            if (parent == nullptr) parent = Root(place.root);
            // A list without a name is in no tree.
            node = Hang(name ? parent : nullptr, name.value_or(""), place.category, place.subcategory);
            if (name) Set(node, "persistent_id", text("Playlist Persistent ID"));
        }
        if (parent_id) return;
        ForEach(PlistValue(list, "Playlist Items"), [&](CFTypeRef item) {
            const auto id = PlistValueText(item, "Track ID", 0);
            if (id && IsNumber(PlistValue(item, "Track ID"))) HoldTrack(node, *id);
        });
        if (number == 0 && text("Master") == "true") master_ = node;
    }

    void HoldTrack(DriverPath *list, const std::string &id) {
        DriverPath *track = FindById(driver.tracks, id);
        if (track == nullptr) return;
        std::string location(FindAttribute(track, "location").value_or(""));
        const std::string ending = location.substr(std::min(location.rfind('.'), location.size()));
        Hold(list, id + ending.substr(0, 5), track);
        // What lists of books and applications do to their tracks.
        const bool is_book = list->category == 5;
        if (is_book || (list->category == 6 && !location.empty())) {
            track->category = list->category;
            track->subcategory = list->subcategory;
        }
        if (!is_book || location.empty() || FindAttribute(track, "media_has_thumb")) return;
        AddAttribute(track, "media_has_thumb", "true");
        const bool epub = strcasecmp(ending.c_str(), ".epub") == 0;
        const bool pdf = strcasecmp(ending.c_str(), ".pdf") == 0;
        if (!ending.empty()) AddAttribute(track, "format", epub ? "EPUB" : pdf ? "PDF" : "Unknown");
        std::replace(location.begin(), location.end(), '/', '\\');
        Set(Hang(track, "thumb", 4, 43), "location", location);
    }

    DriverPath *master_ = nullptr;
};

constexpr const char *kPlain[] = {"<true/>", "<false/>", "<string/>", "<array/>", "<dict/>", "<data/>"};
constexpr const char *kTexts[] = {"TRUE", "true", "yes", "5", "x y"};
constexpr const char *kFiles[] = {"a.mp3", "b.mpeg4", "no.dir/x", "b.EPUB",
                                  "b.pdf", "dot.",    "plain",    "g.ipa"};
constexpr const char *kKinds[] = {"0",  "2",  "3",  "4",  "5",  "6",  "10", "18",  "19", "22",
                                  "26", "31", "48", "57", "58", "59", "65", "5 x", "-1", "2"};

// A library that no real program would write: any subset of keys with values of any type, lists of any kind,
// at any place, with any items. One seed, one library of 41 tracks.
std::string OddLibrary(uint32_t seed) {
    std::mt19937 random(seed);
    const auto chance = [&](uint32_t percent) { return random() % 100 < percent; };
    const auto pick = [&](const auto &list) { return std::string(list[random() % std::size(list)]); };
    const auto value = [&] {
        if (chance(50)) return pick(kPlain);
        if (chance(50)) return XmlText(pick(kTexts));
        return chance(50) ? XmlReal(chance(50) ? "2.5" : "3") : XmlInteger(chance(50) ? 7 : -9);
    };
    const auto id = [&](char letter) { return XmlText(letter + std::to_string(random() % 30)); };
    std::ostringstream out;
    LibraryXml xml(out);
    xml.Root({"Library Persistent ID", value()});
    xml.Root({"Application Version", value()});
    for (int track = 1; track <= 40; ++track) {
        const uint32_t share = 10 + static_cast<uint32_t>(random() % 90);
        XmlEntries entries = {{"Track ID", value()}, {"Names", value()}, {"name", value()}};
        for (const char *key : kKeys) {
            if (chance(share)) entries.push_back({key, chance(60) ? value() : id('x')});
        }
        // Keys that come twice count as they come last.
        if (chance(80)) entries.push_back({"Location", XmlText("file:///m/" + pick(kFiles))});
        if (chance(80)) entries.push_back({"Persistent ID", id('T')});
        xml.Track(std::to_string(track), entries);
    }
    out << "<key></key><dict/><key>41</key><string>no dictionary</string>";
    for (int list = 0; list < 24; ++list) {
        XmlEntries entries;
        const auto maybe = [&](uint32_t percent, const char *key, const std::string &xml_value) {
            if (chance(percent)) entries.push_back({key, xml_value});
        };
        maybe(90, "Name", chance(10) ? XmlText("####!####") : id('l'));
        maybe(list % 12 == 5 ? 90 : 5, "Master", chance(80) ? "<true/>" : value());
        // Parents stand before or after their lists, are tracks or the list itself, or do not exist.
        maybe(90, "Playlist Persistent ID", id('L'));
        maybe(30, "Parent Persistent ID", id(chance(80) ? 'L' : 'T'));
        maybe(50, "Distinguished Kind", XmlText(pick(kKinds)));
        maybe(30, "Folder", value());
        maybe(30, "Smart Info", value());
        std::string items = chance(10) ? "<string>no item</string><dict/>" : "";
        for (auto count = random() % 15; count > 0; --count)
            items += PlaylistItem(chance(90) ? XmlInteger(static_cast<int64_t>(random() % 45)) : value());
        xml.RawPlaylist(entries, chance(95) ? std::optional(items) : std::nullopt);
    }
    xml.Finish();
    return out.str();
}

// The number of tracks that were compared.
size_t Compare(const std::string &xml) {
    LoadedLibrary library("xml", xml);
    EXPECT_EQ(library.result, 0);
    const SlowTree expected(ReadPropertyListFile(library.place.library_xml.string()).get());
    // Not by EXPECT_EQ, which would look for the shortest way from one long text to the other.
    EXPECT_TRUE(TreeText(library.driver.root, "") == TreeText(expected.driver.root, ""))
        << xml.substr(0, 30000);
    const int32_t tracks = GetVelmarArraySize(expected.driver.tracks);
    EXPECT_EQ(GetVelmarArraySize(library.driver.tracks), tracks);
    return static_cast<size_t>(tracks);
}

TEST(LibraryTree, OfARealLibraryAgreesWithTheRules) {
    const fs::path samples = fs::path(SAMPLES_FOLDER) / "itunes-xml";
    if (!fs::is_directory(samples)) GTEST_SKIP() << "no real libraries under " << samples;
    size_t tracks = 0;
    for (const auto &entry : fs::recursive_directory_iterator(samples)) {
        if (entry.path().extension() != ".xml" && entry.path().extension() != ".gz") continue;
        SCOPED_TRACE(entry.path());
        // Reads what is not packed as well.
        const gzFile file = gzopen(entry.path().c_str(), "rb");
        std::string xml(64 << 20, '\0');
        xml.resize(static_cast<size_t>(std::max(0, gzread(file, xml.data(), 64 << 20))));
        gzclose(file);
        tracks += Compare(xml);
    }
    EXPECT_GT(tracks, 0U);
}

TEST(LibraryTree, OfAnOddLibraryAgreesWithTheRules) {
    for (uint32_t seed = 1; seed <= 120 && !HasFailure(); ++seed)
        EXPECT_EQ(Compare(OddLibrary(seed)), 41U) << seed;
}

}  // namespace
