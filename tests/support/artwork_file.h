#ifndef TESTS_SUPPORT_ARTWORK_FILE_H
#define TESTS_SUPPORT_ARTWORK_FILE_H

#include <filesystem>
#include <string>
#include <vector>

// A PNG picture of `side` x `side` pixels, a grey slope from one corner to the other.
std::string PngPicture(int side);

// How the pictures of a cache file are stored.
enum class CachePictures {
    kPng,
    kRaw,  // alpha, red, green, blue for each pixel, under the tag "ARGb"; the slope goes from red to blue
};

// A file of the artwork cache with one square picture for each side, in this order.
std::string ArtworkCacheFile(const std::vector<int> &sides, CachePictures stored = CachePictures::kPng);

// Where iTunes keeps a track's cache file, seen from the folder of the library. Both persistent ids are 16
// hexadecimal digits; the last three digits of the track's id name the folders on the way.
std::filesystem::path ArtworkCachePath(const std::string &library_id, const std::string &track_id);

#endif
