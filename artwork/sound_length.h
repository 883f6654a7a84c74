#ifndef ARTWORK_SOUND_LENGTH_H
#define ARTWORK_SOUND_LENGTH_H

#include <cstdint>
#include <optional>
#include <string>

// The length of a sound file in milliseconds, though only whole seconds are read. The format goes by the
// extension, and by the content where that does not fit. Empty for a file that TagLib cannot read. `path` is
// a Windows path in UTF-8.
std::optional<int64_t> SoundLength(const std::string &path);

#endif
