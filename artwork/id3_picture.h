#ifndef ARTWORK_ID3_PICTURE_H
#define ARTWORK_ID3_PICTURE_H

#include <cstdint>
#include <optional>
#include <string>

struct ExtractedPicture {
    std::string path;  // UTF-8
    int32_t size;      // in bytes
};

// Copies the first picture of an mp3 file's ID3v2 tag that is not empty to the temporary folder, under the
// file's own name and ".jpg". Two files of one name share that place. Empty if there is no picture or if it
// cannot be written. Nothing deletes the copy.
std::optional<ExtractedPicture> ExtractId3Picture(const std::string &location);

#endif
