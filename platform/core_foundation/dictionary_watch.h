// Seeing the content of a list before all of it has been read.
#ifndef PLATFORM_CORE_FOUNDATION_DICTIONARY_WATCH_H
#define PLATFORM_CORE_FOUNDATION_DICTIONARY_WATCH_H

#include <functional>
#include <string_view>

#include "platform/core_foundation/value.h"

namespace core_foundation {

// An entry of a dictionary that is still being read.
struct WatchedEntry {
    const Value *key;
    Value value;

    // Whether this has become that entry of the dictionary.
    bool Is(const void *other_key, const void *other_value) const {
        const auto &other = *static_cast<const Value *>(other_value);
        return key == other_key && value.type == other.type && value.flags == other.flags &&
               value.length == other.length && value.integer == other.integer;
    }
};

// Both are called by the thread that reads.
struct DictionaryWatch {
    // Of the dictionary that is watched: the first one under this key in the root of an XML list.
    std::string_view key;
    // Called with each of its entries whose value is a container, in the order of the file. What it refers to
    // stays until the list is released, and does not change; but the list may yet turn out to be damaged, or
    // to have another value for a key.
    std::function<void(const WatchedEntry &)> on_entry;
    // Called when there will be no list. All that was told of goes away when this returns.
    std::function<void()> on_failure;
};

// As CFPropertyListCreateWithStream to the end of the stream.
CFPropertyListRef ReadWatchedList(CFReadStreamRef stream, const DictionaryWatch &watch);

}  // namespace core_foundation

#endif
