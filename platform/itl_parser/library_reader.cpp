// The body is a chain of sections without gaps:
//
//   offset 0x04  u32  length of the header
//          0x08  u32  length of the section
//          0x0C  u32  kind of the section
#include "platform/itl_parser/library_reader.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "platform/itl_parser/albums.h"
#include "platform/itl_parser/cipher.h"
#include "platform/itl_parser/envelope.h"
#include "platform/itl_parser/inflate.h"
#include "platform/itl_parser/persistent_id.h"
#include "platform/itl_parser/playlists.h"
#include "platform/itl_parser/read_ahead.h"
#include "platform/itl_parser/tracks.h"
#include "platform/limits.h"

namespace itl_parser {

namespace {

using core_foundation::ByteSource;

constexpr RecordKind kSection = {Tag("hdsm"), 16, 16, true};

// The kinds that are read. Others hold settings, and a second list of tracks and one of playlists that are
// parts of these.
enum SectionKind : uint32_t { kTracks = 1, kPlaylists = 2, kAlbums = 9 };

// Reads on without keeping anything, `size` bytes or to the end. False when it fails.
bool ReadOn(ByteSource &source, uint64_t size) {
    std::array<char, 4096> bytes;
    while (size > 0) {
        const auto count = source.Read(bytes.data(), std::min<uint64_t>(size, bytes.size()));
        if (!count) return false;
        if (*count == 0) break;
        size -= *count;
    }
    return true;
}

class SectionReader {
  public:
    SectionReader(RecordCursor &cursor, LibraryContent &content) : cursor_(cursor), content_(content) {}

    bool Read(uint32_t count) {
        if (!cursor_.Begin()) return false;
        for (uint32_t i = 0; i < count; ++i) {
            if (!ReadSection()) return false;
        }
        if (!has_tracks_ || !has_playlists_ || !cursor_.IsAtEnd()) return false;
        RateTracksByAlbum(open_);
        NumberPlaylists(content_, open_);
        return true;
    }

  private:
    bool ReadSection() {
        const auto section = cursor_.Open(kSection, RecordCursor::kNoLimit);
        if (!section) return false;
        const uint32_t kind = section->fields.U32(0x0C);
        return cursor_.MoveTo(section->header_end) && ReadContent(kind, section->end) &&
               cursor_.MoveTo(section->end);
    }

    bool ReadContent(uint32_t kind, uint64_t end) {
        switch (kind) {
            case kTracks:
                return TakeOnce(has_tracks_) && ReadTracks(cursor_, end, content_, open_);
            case kPlaylists:
                return TakeOnce(has_playlists_) && ReadPlaylists(cursor_, end, content_, open_);
            case kAlbums:
                return ReadAlbums(cursor_, end, content_, open_);
            default:
                return true;
        }
    }

    static bool TakeOnce(bool &taken) { return !std::exchange(taken, true); }

    RecordCursor &cursor_;
    LibraryContent &content_;
    OpenEnds open_;
    bool has_tracks_ = false;
    bool has_playlists_ = false;
};

// A body of some size is inflated on a thread of its own; a small one is done before a thread has begun.
constexpr uint64_t kLeastReadAhead = uint64_t{1} << 20;

bool ReadBody(ByteSource &body, const Envelope &envelope, LibraryContent &content) {
    std::optional<ReadAheadSource> ahead;
    if (envelope.is_compressed && envelope.body_length >= kLeastReadAhead) ahead.emplace(body);
    RecordCursor cursor(ahead ? static_cast<ByteSource &>(*ahead) : body, envelope.order);
    return SectionReader(cursor, content).Read(envelope.section_count);
}

bool ReadFile(ByteSource &file, uint64_t file_length, LibraryContent &content) {
    std::array<char, kEnvelopeBytes> start;
    if (limits::kItlFileBytes.IsPassedBy(file_length)) return false;
    if (file.Read(start.data(), start.size()) != start.size()) return false;
    const auto envelope = ReadEnvelope({start.data(), start.size()}, file_length);
    if (!envelope || !ReadOn(file, envelope->header_length - start.size())) return false;
    content.memory.SetLimit(file_length);
    content.version = envelope->version;
    content.persistent_id = PersistentIdText(envelope->persistent_id).data();

    DecryptingSource plain(file, envelope->encrypted_length);
    std::optional<InflatingSource> inflated;
    if (envelope->is_compressed) inflated.emplace(plain);
    // iTunes may have cut or prolonged the file meanwhile.
    return ReadBody(inflated ? static_cast<ByteSource &>(*inflated) : plain, *envelope, content) &&
           ReadOn(plain, RecordCursor::kNoLimit) && plain.total() == envelope->body_length;
}

}  // namespace

bool ReadLibrary(ByteSource &file, uint64_t file_length, LibraryContent &content) {
    try {
        return ReadFile(file, file_length, content);
    } catch (const std::bad_alloc &) {
        return false;
    }
}

}  // namespace itl_parser
