#ifndef TESTS_SUPPORT_MEDIA_FILES_H
#define TESTS_SUPPORT_MEDIA_FILES_H

#include <string>

// Small media files that real players accept, made without any codec: each function gives the bytes of one
// file.

struct MediaTags {
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
    int year = 0;
    int track = 0;
    std::string picture{};  // a PNG file; in MP3 files only
};

// A 440 Hz tone, 16-bit mono PCM at 22050 Hz.
std::string WavFile(int seconds);

// Silence in MPEG-1 Layer III, 44100 Hz mono at 32 kbit/s, with an ID3v2.3 tag in front, which holds
// the picture too, and an ID3v1 tag at the end.
std::string Mp3File(int seconds, const MediaTags &tags);

// Silence in AAC-LC, 44100 Hz mono, in an MP4 file with iTunes tags: what iTunes calls .m4a, and .m4r for
// ringtones.
std::string M4aFile(int seconds, const MediaTags &tags);

// The same sound with a track of five pictures a second, PNG files of 48 x 48 pixels.
std::string M4vFile(int seconds, const MediaTags &tags);

// A document of one page with one line of text, which must not contain parentheses or backslashes.
std::string PdfFile(const std::string &line);

#endif
