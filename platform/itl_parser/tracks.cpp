// The head of the list, "htlm", with the number of tracks, then a record for each:
//
//   offset 0x0C  u32  number of data objects behind the header
//          0x10  u32  id
//          0x20  u32  date modified, in seconds since 1904 in local time
//          0x24  u32  size, low 32 bits
//          0x28  u32  total time in milliseconds
//          0x38  u32  bit rate
//          0x3C  u32  sample rate times 65536, in the first versions
//          0x4C  u32  play count
//          0x6C  u8   rating
//          0x80  u64  persistent id
//          0x98  f32  sample rate
//          0xDC  u32  number of the album
//         0x144  u64  size
#include "platform/itl_parser/tracks.h"

#include <bit>

#include "platform/itl_parser/persistent_id.h"
#include "platform/itl_parser/texts.h"

namespace itl_parser {

namespace {

constexpr RecordKind kTrackList = {Tag("htlm"), kRecordStart, kRecordStart, false};
constexpr RecordKind kTrack = {Tag("htim"), 0x9C, 0x14C, true};

constexpr int32_t kSizeOfFile = -1;
constexpr uint32_t kLargestNumber = 0x7FFFFFFF;
// Far above what any sound has: a number that is none.
constexpr float kLargestSampleRate = 10'000'000;

// The types of data objects that are read.
enum TextType : uint32_t { kName = 2, kAlbum = 3, kArtist = 4, kGenre = 5, kKind = 6, kLocation = 11 };

// Numbers beyond the field come from broken media files: they mean nothing.
int32_t Number(uint32_t value) {
    return value > kLargestNumber ? 0 : static_cast<int32_t>(value);
}

int32_t SizeOf(const Fields &fields) {
    const uint64_t size = fields.Has(0x144, 8) ? fields.U64(0x144) : fields.U32(0x24);
    return size > kLargestNumber ? kSizeOfFile : static_cast<int32_t>(size);
}

int32_t SampleRateOf(const Fields &fields) {
    const uint32_t bits = fields.U32(0x98);
    if (bits == 0) return static_cast<int32_t>(fields.U32(0x3C) >> 16);
    const auto rate = std::bit_cast<float>(bits);
    // Written so that no number is not within.
    return rate >= 0 && rate <= kLargestSampleRate ? static_cast<int32_t>(rate) : 0;
}

std::string_view Track::*FieldOf(uint32_t type) {
    switch (type) {
        case kName:
            return &Track::name;
        case kAlbum:
            return &Track::album;
        case kArtist:
            return &Track::artist;
        case kGenre:
            return &Track::genre;
        case kKind:
            return &Track::kind;
        case kLocation:
            return &Track::location;
        default:
            return nullptr;
    }
}

class TrackListReader {
  public:
    TrackListReader(RecordCursor &cursor, LibraryContent &content, OpenEnds &open)
        : cursor_(cursor), content_(content), open_(open), texts_(cursor, content.memory) {}

    bool Read(uint64_t end) {
        const auto list = cursor_.Open(kTrackList, end);
        if (!list || !cursor_.MoveTo(list->header_end)) return false;
        for (uint32_t i = 0; i < list->number; ++i) {
            if (!ReadTrack(end)) return false;
        }
        return cursor_.position() == end;
    }

  private:
    bool ReadTrack(uint64_t list_end) {
        const auto record = cursor_.Open(kTrack, list_end);
        if (!record) return false;
        auto *track = content_.memory.New<Track>();
        ReadFields(record->fields, *track);
        uint32_t objects = record->fields.U32(0x0C);
        if (!cursor_.MoveTo(record->header_end)) return false;
        for (; objects > 0; --objects) {
            if (!ReadObject(record->end, *track)) return false;
        }
        content_.memory.Charge(kVectorShare * sizeof track);
        content_.tracks.push_back(track);
        previous_ = track;
        return cursor_.position() == record->end;
    }

    void ReadFields(const Fields &fields, Track &track) {
        track.id = static_cast<int32_t>(fields.U32(0x10));
        track.date_modified = fields.U32(0x20);
        track.size = SizeOf(fields);
        track.total_time = Number(fields.U32(0x28));
        track.bit_rate = Number(fields.U32(0x38));
        track.sample_rate = SampleRateOf(fields);
        track.rating = fields.U8(0x6C);
        track.play_count = Number(fields.U32(0x4C));
        track.persistent_id = content_.memory.Keep(PersistentIdText(fields.U64(0x80)).data(), {});
        const uint32_t album = fields.U32(0xDC);
        if (track.rating != 0 || album == 0) return;
        content_.memory.Charge(kVectorShare * sizeof(open_.unrated_tracks[0]));
        open_.unrated_tracks.emplace_back(&track, album);
    }

    bool ReadObject(uint64_t track_end, Track &track) {
        const auto object = cursor_.Open(kDataObject, track_end);
        if (!object) return false;
        if (const auto field = FieldOf(TypeOf(*object))) {
            // Tracks of an album stand together as a rule, and share most texts.
            const auto text = texts_.Read(*object, previous_->*field);
            if (!text) return false;
            track.*field = *text;
        }
        return cursor_.MoveTo(object->end);
    }

    RecordCursor &cursor_;
    LibraryContent &content_;
    OpenEnds &open_;
    TextReader texts_;
    const Track none_;
    const Track *previous_ = &none_;
};

}  // namespace

bool ReadTracks(RecordCursor &cursor, uint64_t section_end, LibraryContent &content, OpenEnds &open) {
    return TrackListReader(cursor, content, open).Read(section_end);
}

}  // namespace itl_parser
