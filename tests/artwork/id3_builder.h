#ifndef TESTS_ARTWORK_ID3_BUILDER_H
#define TESTS_ARTWORK_ID3_BUILDER_H

#include <cstdint>
#include <string>
#include <string_view>

#include "fixtures/byte_text.h"

// ID3v2.3 tags of any content.

inline std::string Id3Frame(std::string_view id, const std::string &body,
                            const std::string &flags = Zeros(2)) {
    return std::string(id) + BigEndian(static_cast<std::uint32_t>(body.size())) + flags + body;
}

// Encoding 0, a text that is called Latin-1.
inline std::string Id3Text(std::string_view id, const std::string &text) {
    return Id3Frame(id, '\0' + text);
}

// Encoding, MIME type, picture type "front cover", no description, picture.
inline std::string PictureBody(const std::string &picture) {
    return '\0' + std::string("image/jpeg") + '\0' + '\3' + '\0' + picture;
}

inline std::string PictureFrame(const std::string &picture) {
    return Id3Frame("APIC", PictureBody(picture));
}

// Seven bits in each of four bytes.
inline std::string SynchSafe(std::size_t size) {
    std::string bytes;
    for (int shift = 21; shift >= 0; shift -= 7)
        bytes += static_cast<char>(size >> shift & 0x7FU);
    return bytes;
}

inline std::string Id3Tag(const std::string &frames) {
    return std::string("ID3\3\0\0", 6) + SynchSafe(frames.size()) + frames;
}

// Silent MPEG frames: 417 bytes each, of 128 kbit/s at 44100 Hz, 38 to a second.
inline std::string SilentSound(int seconds) {
    std::string sound;
    for (int i = 0; i < seconds * 384 / 10 + 1; ++i)
        sound += std::string("\xFF\xFB\x90\xC4", 4) + Zeros(413);
    return sound;
}

#endif
