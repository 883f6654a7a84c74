#ifndef ARTWORK_TRACKS_BY_KEY_H
#define ARTWORK_TRACKS_BY_KEY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "driver/driver_path.h"
#include "driver/text_index.h"
#include "platform/limits.h"

// What names of artwork files hold of a persistent id.
inline constexpr size_t kTrackKeySize = 16;

// The tracks of a library by the first bytes of their persistent id, as they stand when this is made. Tracks
// with a shorter id are left out.
class TracksByKey {
  public:
    explicit TracksByKey(VelmarArray *tracks);

    // Hands every track with the key to `use`, for as many files as tracks may have.
    template <typename Use>
    void ForEach(std::string_view key, const Use &use);

  private:
    struct Entry {
        std::array<char, kTrackKeySize> key;
        uint32_t next;   // the position plus one of another track with this key; 0 for none
        uint32_t files;  // of the first track with a key: how many came for it
        DriverPath *track;
    };

    auto Same(std::string_view key) const {
        return [this, key](uint32_t at) { return KeyAt(at) == key; };
    }
    std::string_view KeyAt(uint32_t at) const { return {entries_[at].key.data(), kTrackKeySize}; }
    void Add(DriverPath *track, std::string_view key);

    std::vector<Entry> entries_;
    TextIndex index_;
};

template <typename Use>
void TracksByKey::ForEach(std::string_view key, const Use &use) {
    const auto first = index_.Find(HashOf(key), Same(key));
    if (first && limits::kArtworkFiles.IsPassedBy(++entries_[*first].files)) return;
    for (uint32_t next = first ? *first + 1 : 0; next != 0; next = entries_[next - 1].next)
        use(entries_[next - 1].track);
}

#endif
