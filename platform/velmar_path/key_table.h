#ifndef PLATFORM_VELMAR_PATH_KEY_TABLE_H
#define PLATFORM_VELMAR_PATH_KEY_TABLE_H

#include <cstdint>
#include <string_view>

// The keys of attributes, each stored once for the process and known by a number: the nodes of a tree have
// the same few dozen keys. Any thread may call.

// The number of a text that is no known key.
constexpr uint16_t kUnknownKey = 0;

// Numbers follow each other from 1 on.
uint16_t FindKey(const char *text);

// The number of the text, which becomes a known key. kUnknownKey once there are too many: whoever invents
// keys without end stores them himself.
uint16_t TakeKey(const char *text);

// The text of a known key, followed by a NUL, for as long as the process lives.
std::string_view TextOfKey(uint16_t key);

#endif
