#ifndef TESTS_SUPPORT_H264_PICTURE_H
#define TESTS_SUPPORT_H264_PICTURE_H

#include <cstdint>
#include <string>

// H.264 pictures without compression: every block is stored as plain samples, so that no encoder is needed.

inline constexpr int kPictureWidth = 64;
inline constexpr int kPictureHeight = 48;

// The decoder configuration record ("avcC") that goes with the pictures.
std::string H264Configuration();

// One picture of a single grey (1 to 255), with the four-byte length in front that MP4 wants. Pictures that
// follow one another must differ in the lowest bit of `index`.
std::string H264Picture(std::uint8_t grey, int index);

#endif
