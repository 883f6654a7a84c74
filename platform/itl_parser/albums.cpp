// The head of the list, "halm", with the number of albums, then a record for each:
//
//   offset 0x10  u32  number of the album
//          0x28  u8   rating
#include "platform/itl_parser/albums.h"

#include <algorithm>

namespace itl_parser {

namespace {

constexpr RecordKind kAlbumList = {Tag("halm"), kRecordStart, kRecordStart, false};
constexpr RecordKind kAlbum = {Tag("haim"), kRecordStart, 0x2C, true};

}  // namespace

bool ReadAlbums(RecordCursor &cursor, uint64_t section_end, LibraryContent &content, OpenEnds &open) {
    const auto list = cursor.Open(kAlbumList, section_end);
    if (!list || !cursor.MoveTo(list->header_end)) return false;
    for (uint32_t i = 0; i < list->number; ++i) {
        const auto album = cursor.Open(kAlbum, section_end);
        if (!album) return false;
        if (const uint8_t rating = album->fields.U8(0x28); rating != 0) {
            content.memory.Charge(kVectorShare * sizeof(open.album_ratings[0]));
            open.album_ratings.emplace_back(album->fields.U32(0x10), rating);
        }
        if (!cursor.MoveTo(album->end)) return false;
    }
    return cursor.position() == section_end;
}

void RateTracksByAlbum(OpenEnds &open) {
    auto &ratings = open.album_ratings;
    std::sort(ratings.begin(), ratings.end());
    for (const auto &[track, album] : open.unrated_tracks) {
        const auto found = std::lower_bound(ratings.begin(), ratings.end(), std::pair(album, uint8_t{0}));
        if (found != ratings.end() && found->first == album) track->rating = found->second;
    }
}

}  // namespace itl_parser
