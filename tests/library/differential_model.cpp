#include "tests/library/differential_model.h"

#include <strings.h>

#include <array>
#include <cstdlib>
#include <functional>

namespace {

// XML key, attribute. "Location" is a URL.
constexpr std::array<std::pair<const char *, const char *>, 27> kTrackKeys = {{
    {"Name", "name"},
    {"Artist", "artist"},
    {"Album", "album"},
    {"Album Artist", "album_artist"},
    {"Composer", "composer"},
    {"Genre", "genre"},
    {"Kind", "kind"},
    {"Size", "st_size"},
    {"Total Time", "duration"},
    {"Track Number", "track_num"},
    {"Year", "year"},
    {"Bit Rate", "bit_rate"},
    {"Sample Rate", "sample_rate"},
    {"Comments", "comment"},
    {"Video Width", "width"},
    {"Video Height", "height"},
    {"Play Count", "plays"},
    {"Rating", "rating"},
    {"Movie", "is_movie"},
    {"Purchased", "purchased"},
    {"Persistent ID", "persistent_id"},
    {"Location", "location"},
    {"Date Modified", "st_mtime"},
    {"Date Added", "st_addtime"},
    {"Has Video", "has_video"},
    {"TV Show", "is_tvshow"},
    {"Podcast", "is_podcast"},
}};

SlowNodePointer MakeNode(int kind, int category, int subcategory) {
    auto node = std::make_shared<SlowNode>();
    node->kind = kind;
    node->category = category;
    node->subcategory = subcategory;
    return node;
}

void SetText(SlowNode &node, const std::string &key, const std::optional<std::string> &text) {
    if (text) node.attributes.emplace_back(key, *text);
}

bool IsTrue(const SlowNode &track, const std::string &key) {
    const auto text = track.Attribute(key);
    return text && strcasecmp(text->c_str(), "true") == 0;
}

SlowNodePointer MakeTrack(const std::string &id, const SlowValue &dictionary) {
    SlowNodePointer track = MakeNode(4, 0, 0);
    SetText(*track, "id", id);
    if (dictionary.element != "dict") return track;
    for (const auto &[key, attribute] : kTrackKeys) {
        const SlowValue *value = dictionary.Find(key);
        auto text = SlowText(value);
        if (text && std::string(key) == "Location" && value->element == "string") text = SlowPath(*text);
        SetText(*track, attribute, text);
    }
    const bool film = IsTrue(*track, "is_movie") || IsTrue(*track, "has_video");
    track->category = 2;
    track->subcategory = 20;
    if (film) track->subcategory = 30;
    if (IsTrue(*track, "is_tvshow")) track->subcategory = 31;
    if (IsTrue(*track, "is_podcast")) track->subcategory = 9;
    if (track->subcategory != 20) track->category = 3;
    return track;
}

// Depth first, the node itself included.
SlowNodePointer FindByPersistentId(const SlowNodePointer &start, const std::string &id) {
    if (start->Attribute("persistent_id") == id) return start;
    for (const SlowNodePointer &child : start->children) {
        if (SlowNodePointer found = FindByPersistentId(child, id)) return found;
    }
    return nullptr;
}

SlowNodePointer LastChildOf(const SlowNode &node, const std::function<bool(const SlowNode &)> &wanted) {
    SlowNodePointer last;
    for (const SlowNodePointer &child : node.children) {
        if (wanted(*child)) last = child;
    }
    return last;
}

// Where a list goes by its Distinguished Kind; an empty name stands for the list's own.
struct ListPlace {
    int number;
    const char *root;
    int category;
    int subcategory;
    const char *name;
};
constexpr std::array<ListPlace, 11> kListPlaces = {{
    {2, "library", 3, 30, "movie"},
    {3, "library", 3, 31, "tvshow"},
    {4, "library", 2, 20, "music"},
    {5, "library", 5, 50, "book"},
    {10, "library", 3, 9, "podcast"},
    {18, "library", 6, 60, "app"},
    {19, "library", 1, 11, ""},
    {22, "playlist", 1, 13, ""},
    {26, "genius", 1, 12, ""},
    {31, "library", 1, 10, ""},
    {48, "library", 3, 30, "movie"},
}};

ListPlace PlaceOfList(int number, bool smart, bool folder) {
    for (const ListPlace &place : kListPlaces) {
        if (place.number == number) return place;
    }
    int subcategory = 4;
    if (folder) subcategory = 5;
    if (smart) subcategory = 3;
    return {number, "playlist", 1, subcategory, ""};
}

// The last "." and up to four bytes behind it.
std::string ShortExtension(const std::string &location) {
    const std::size_t dot = location.rfind('.');
    return dot == std::string::npos ? std::string() : location.substr(dot, 5);
}

class TreeBuilder {
  public:
    explicit TreeBuilder(const SlowValue &library) : library_(library) {}

    SlowNodePointer Build() {
        MakeRoot();
        ReadTracks();
        const SlowValue *playlists = library_.Find("Playlists");
        if (playlists != nullptr && playlists->element == "array") {
            for (const SlowValue &list : playlists->items)
                ReadList(list);
        }
        AddUnlistedFilms();
        AddScannedRoots();
        return root_;
    }

  private:
    void MakeRoot() {
        SetText(*root_, "terminal_type", "iTunes");
        SetText(*root_, "persistent_id", SlowText(library_.Find("Library Persistent ID")));
        SetText(*root_, "application_version", SlowText(library_.Find("Application Version")));
        root_->Hang("library", MakeNode(1, 1, 1));
        root_->Hang("genius", MakeNode(1, 1, 12));
        root_->Hang("playlist", MakeNode(1, 1, 2));
    }

    void ReadTracks() {
        const SlowValue *tracks = library_.Find("Tracks");
        if (tracks == nullptr || tracks->element != "dict") return;
        for (std::size_t i = 0; i < tracks->keys.size(); ++i) {
            tracks_.push_back(MakeTrack(tracks->keys[i], tracks->items[i]));
        }
    }

    // The roots that scans of folders make where no list has made them.
    void AddScannedRoots() {
        constexpr ListPlace kScannedRoots[] = {
            {0, "library", 2, 21, "ringtone"}, {0, "library", 5, 50, "Books"}, {0, "library", 6, 60, "app"}};
        for (const ListPlace &place : kScannedRoots) {
            bool there = false;
            for (const SlowNodePointer &child : Library().children)
                there = there || child->subcategory == place.subcategory;
            if (!there) Library().Hang(place.name, MakeNode(1, place.category, place.subcategory));
        }
    }

    SlowNode &Library() { return *root_->children[0]; }

    SlowNodePointer RootNamed(const std::string &name) {
        if (name == "library") return root_->children[0];
        return root_->children[name == "genius" ? 1 : 2];
    }

    SlowNodePointer MovieRoot() {
        return LastChildOf(Library(),
                           [](const SlowNode &n) { return n.category == 3 && n.subcategory == 30; });
    }

    void ReadList(const SlowValue &list) {
        if (list.element != "dict" || SlowText(list.Find("Name")) == "####!####") return;
        const int number = std::atoi(SlowText(list.Find("Distinguished Kind")).value_or("0").c_str());
        if (number == 6 || number == 57 || number == 58 || number == 59) return;
        const SlowNodePointer node = MakeList(list, number);
        if (SlowText(list.Find("Parent Persistent ID"))) return;
        AddItems(node, list.Find("Playlist Items"));
        if (number == 0 && SlowText(list.Find("Master")) == "true") master_ = node;
    }

    SlowNodePointer MakeList(const SlowValue &list, int number) {
        if (number == 2 || number == 48) {
            if (SlowNodePointer movie = MovieRoot()) return movie;
        }
        const ListPlace place = PlaceOfList(number, SlowText(list.Find("Smart Info")).has_value(),
                                            SlowText(list.Find("Folder")).has_value());
        SlowNodePointer node = MakeNode(1, place.category, place.subcategory);
        auto name = SlowText(list.Find("Name"));
        if (*place.name != '\0') name = place.name;
        if (!name) return node;
        SetText(*node, "persistent_id", SlowText(list.Find("Playlist Persistent ID")));
        SlowNodePointer parent;
        if (const auto id = SlowText(list.Find("Parent Persistent ID")))
            parent = FindByPersistentId(root_, *id);
        if (!parent) parent = RootNamed(place.root);
        parent->Hang(*name, node);
        return node;
    }

    void AddItems(const SlowNodePointer &list, const SlowValue *items) {
        if (items == nullptr || items->element != "array") return;
        for (const SlowValue &item : items->items) {
            const SlowValue *id = item.Find("Track ID");
            if (id == nullptr || (id->element != "integer" && id->element != "real")) continue;
            if (const auto text = SlowText(id)) AddTrack(*list, *text);
        }
    }

    void AddTrack(SlowNode &list, const std::string &id) {
        for (const SlowNodePointer &track : tracks_) {
            if (track->Attribute("id") == id) {
                list.Hang(id + ShortExtension(track->Attribute("location").value_or("")), track);
                TakeOver(list, *track);
                return;
            }
        }
    }

    // What lists of books and applications do to their tracks.
    static void TakeOver(const SlowNode &list, SlowNode &track) {
        const std::string location = track.Attribute("location").value_or("");
        const bool book = list.category == 5 && list.subcategory == 50;
        const bool application = list.category == 6 && list.subcategory == 60;
        if (book || (application && !location.empty())) {
            track.category = list.category;
            track.subcategory = list.subcategory;
        }
        if (!book || location.empty()) return;
        SetText(track, "media_has_thumb", "true");
        if (const std::size_t dot = location.rfind('.'); dot != std::string::npos) {
            const std::string ending = location.substr(dot + 1);
            const bool epub = strcasecmp(ending.c_str(), "epub") == 0;
            const bool pdf = strcasecmp(ending.c_str(), "pdf") == 0;
            SetText(track, "format", epub ? "EPUB" : pdf ? "PDF" : "Unknown");
        }
        track.Hang("thumb", MakeNode(1, 4, 43));
    }

    void AddUnlistedFilms() {
        if (!master_) return;
        const std::vector<SlowNodePointer> tracks = master_->children;
        for (const SlowNodePointer &track : tracks) {
            const auto id = track->Attribute("id");
            if (!id || track->category != 3 || track->subcategory != 30) continue;
            if (!MovieRoot()) Library().Hang("movie", MakeNode(1, 3, 30));
            const SlowNodePointer movie = MovieRoot();
            if (!LastChildOf(*movie, [&](const SlowNode &n) { return n.Attribute("id") == id; })) {
                AddTrack(*movie, *id);
            }
        }
    }

    const SlowValue &library_;
    SlowNodePointer root_ = MakeNode(0, 0, 0);
    SlowNodePointer master_;
    std::vector<SlowNodePointer> tracks_;
};

}  // namespace

std::optional<std::string> SlowNode::Attribute(const std::string &key) const {
    for (const auto &[name, value] : attributes) {
        if (name == key) return value;
    }
    return std::nullopt;
}

void SlowNode::Hang(const std::string &name, const SlowNodePointer &child) {
    names.push_back(name);
    children.push_back(child);
}

SlowNodePointer BuildSlowTree(const SlowValue &library) {
    return TreeBuilder(library).Build();
}
