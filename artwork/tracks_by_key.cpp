#include "artwork/tracks_by_key.h"

#include <utility>

#include "driver/attributes.h"

TracksByKey::TracksByKey(VelmarArray *tracks) {
    const int32_t count = GetVelmarArraySize(tracks);
    entries_.reserve(static_cast<size_t>(count));
    index_.Reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        void *item = nullptr;
        GetVelmarArrayItem(tracks, i, &item);
        auto *track = static_cast<DriverPath *>(item);
        const auto id = track == nullptr ? std::nullopt : FindAttribute(track, "persistent_id");
        if (id && id->size() >= kTrackKeySize) Add(track, id->substr(0, kTrackKeySize));
    }
}

void TracksByKey::Add(DriverPath *track, std::string_view key) {
    const auto position = static_cast<uint32_t>(entries_.size());
    Entry &entry = entries_.emplace_back(Entry{{}, 0, 0, track});
    key.copy(entry.key.data(), kTrackKeySize);
    const uint32_t hash = HashOf(key);
    if (index_.Add(hash, position, Same(key))) return;
    // Tracks with one key hang on the first of them.
    Entry &first = entries_[*index_.Find(hash, Same(key))];
    entry.next = std::exchange(first.next, position + 1);
}
