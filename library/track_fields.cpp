// Attribute texts of a track of the .itl file.
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

#include "content/file_stamp.h"
#include "content/location_url.h"
#include "content/path_text.h"
#include "library/track_import.h"
#include "library/track_keys.h"
#include "platform/windows/windows_api.h"

namespace {

// Rows of TrackKeyTable that such a track has.
enum Row : size_t {
    kName = 0,
    kArtist = 1,
    kAlbum = 2,
    kGenre = 5,
    kKind = 6,
    kSize = 7,
    kDuration = 8,
    kBitRate = 11,
    kSampleRate = 12,
    kPlays = 16,
    kRating = 17,
    kPersistentId = 20,
    kLocation = 21,
    kModified = 22,
};

constexpr int32_t kSizeOfFile = -1;

std::string_view NumberText(int64_t number, std::string &room) {
    constexpr size_t kMostDigits = 24;
    if (room.size() < kMostDigits) room.resize(kMostDigits);
    char *end = std::to_chars(room.data(), room.data() + kMostDigits - 1, number).ptr;
    *end = '\0';
    return {room.data(), static_cast<size_t>(end - room.data())};
}

std::optional<std::string_view> SizeText(const Track &track, std::string &room) {
    if (track.size != kSizeOfFile) return NumberText(track.size, room);
    const auto size = SizeOfFile(LocationUrlToPath(track.location));
    return size ? std::optional(NumberText(*size, room)) : std::nullopt;
}

}  // namespace

std::optional<std::string_view> TrackFieldText(const Track &track, size_t index, int32_t flags,
                                               std::string &room) {
    switch (index) {
        case kName:
            return track.name;
        case kArtist:
            return track.artist;
        case kAlbum:
            return track.album;
        case kGenre:
            return track.genre;
        case kKind:
            return track.kind;
        case kSize:
            return SizeText(track, room);
        case kDuration:
            return NumberText(track.total_time, room);
        case kBitRate:
            return NumberText(track.bit_rate, room);
        case kSampleRate:
            return NumberText(track.sample_rate, room);
        case kPlays:
            return NumberText(track.play_count, room);
        case kRating:
            return NumberText(track.rating, room);
        case kPersistentId:
            return track.persistent_id;
        case kLocation:
            return (flags & kTextIsLocation) != 0 ? LocationUrlToPath(track.location, room) : track.location;
        case kModified:
            return NumberText(track.date_modified, room);
        default:
            return std::nullopt;
    }
}
