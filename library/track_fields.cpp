// Attribute texts of a track of the .itl file.
#include <cstdint>
#include <string>

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

std::optional<std::string> SizeText(const Track &track) {
    if (track.size != kSizeOfFile) return std::to_string(track.size);
    struct __stat64 status = {};
    const std::wstring path = Utf8ToWide(LocationUrlToPath(track.location));
    if (_wstat64(path.c_str(), &status) != 0) return std::nullopt;
    return std::to_string(status.st_size);
}

}  // namespace

std::optional<std::string> TrackFieldText(const Track &track, size_t index, int32_t flags) {
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
            return SizeText(track);
        case kDuration:
            return std::to_string(track.total_time);
        case kBitRate:
            return std::to_string(track.bit_rate);
        case kSampleRate:
            return std::to_string(track.sample_rate);
        case kPlays:
            return std::to_string(track.play_count);
        case kRating:
            return std::to_string(track.rating);
        case kPersistentId:
            return track.persistent_id;
        case kLocation:
            return (flags & kTextIsLocation) != 0 ? LocationUrlToPath(track.location) : track.location;
        case kModified:
            return std::to_string(track.date_modified);
        default:
            return std::nullopt;
    }
}
