// The head of the lists, "hplm", with their number, then a record for each:
//
//   offset 0x0C  u32  number of data objects
//          0x10  u32  number of items
//         0x239  u8   kind; the byte before is a field of its own
//         0xD40  u32  id, 0 up to version 11.0
//
// Behind the header come the data objects and the items:
//
//   offset 0x08  u32  length, with the data objects that an item may hold
//          0x18  u32  id of the track
#include "platform/itl_parser/playlists.h"

#include <algorithm>

#include "platform/itl_parser/texts.h"

namespace itl_parser {

namespace {

constexpr RecordKind kPlaylistHead = {Tag("hplm"), kRecordStart, kRecordStart, false};
constexpr RecordKind kPlaylist = {Tag("hpim"), 0x14, 0xD44, true};
constexpr RecordKind kItem = {Tag("hptm"), 0x1C, 0x1C, true};

// The types of data objects that are read.
constexpr uint32_t kName = 100;
constexpr uint32_t kSmartInfo = 102;

class PlaylistReader {
  public:
    PlaylistReader(RecordCursor &cursor, LibraryContent &content, OpenEnds &open)
        : cursor_(cursor), content_(content), open_(open), texts_(cursor, content.memory) {}

    bool Read(uint64_t end) {
        const auto head = cursor_.Open(kPlaylistHead, end);
        if (!head || !cursor_.MoveTo(head->header_end)) return false;
        for (uint32_t i = 0; i < head->number; ++i) {
            if (!ReadPlaylist(end)) return false;
        }
        return cursor_.position() == end;
    }

  private:
    bool ReadPlaylist(uint64_t lists_end) {
        const auto record = cursor_.Open(kPlaylist, lists_end);
        if (!record) return false;
        Playlist &list = AddPlaylist(record->fields);
        uint32_t objects = record->fields.U32(0x0C);
        uint32_t items = record->fields.U32(0x10);
        if (!cursor_.MoveTo(record->header_end)) return false;
        // Both counts reach 0 where the record ends, or it is damaged.
        while (cursor_.position() < record->end) {
            const bool is_item = cursor_.PeekTag() == kItem.tag;
            uint32_t &left = is_item ? items : objects;
            if (left == 0) return false;
            --left;
            if (!(is_item ? ReadItem(record->end, list) : ReadObject(record->end, list))) return false;
        }
        return objects == 0 && items == 0;
    }

    Playlist &AddPlaylist(const Fields &fields) {
        content_.memory.Charge(sizeof(Playlist) + 2 * kVectorShare * sizeof(Playlist *));
        Playlist &list = content_.playlist_records.emplace_back();
        content_.playlists.push_back(&list);
        list.kind = fields.U8(0x239);
        list.id = static_cast<int32_t>(fields.U32(0xD40));
        if (list.id == 0) open_.unnumbered_playlists.push_back(&list);
        return list;
    }

    bool ReadObject(uint64_t list_end, Playlist &list) {
        const auto object = cursor_.Open(kDataObject, list_end);
        if (!object) return false;
        const uint32_t type = TypeOf(*object);
        if (type == kName || type == kSmartInfo) {
            const auto text = type == kName ? texts_.Read(*object, {}) : texts_.ReadAsBase64(*object);
            if (!text) return false;
            (type == kName ? list.name : list.smart_text) = *text;
        }
        return cursor_.MoveTo(object->end);
    }

    bool ReadItem(uint64_t list_end, Playlist &list) {
        const auto item = cursor_.Open(kItem, list_end);
        if (!item) return false;
        if (const auto id = static_cast<int32_t>(item->fields.U32(0x18)); id != 0) {
            content_.memory.Charge(kVectorShare * sizeof id);
            list.items.push_back(id);
        }
        return cursor_.MoveTo(item->end);
    }

    RecordCursor &cursor_;
    LibraryContent &content_;
    OpenEnds &open_;
    TextReader texts_;
};

}  // namespace

bool ReadPlaylists(RecordCursor &cursor, uint64_t section_end, LibraryContent &content, OpenEnds &open) {
    return PlaylistReader(cursor, content, open).Read(section_end);
}

void NumberPlaylists(const LibraryContent &content, OpenEnds &open) {
    int32_t highest = 0;
    for (const Track *track : content.tracks)
        highest = std::max(highest, track->id);
    for (const Playlist *list : content.playlists)
        highest = std::max(highest, list->id);
    // Behind the highest number follow the negative ones, which are as good.
    auto next = static_cast<uint32_t>(highest);
    for (Playlist *list : open.unnumbered_playlists)
        list->id = static_cast<int32_t>(++next);
}

}  // namespace itl_parser
