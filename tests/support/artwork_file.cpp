#include "tests/support/artwork_file.h"

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/support/byte_text.h"

namespace {

// Length, name, body, checksum over name and body.
std::string PngChunk(const std::string &name, const std::string &body) {
    const std::string checked = name + body;
    const uLong checksum =
        crc32(0, reinterpret_cast<const Bytef *>(checked.data()), static_cast<uInt>(checked.size()));
    return BigEndian(static_cast<std::uint32_t>(body.size())) + checked +
           BigEndian(static_cast<std::uint32_t>(checksum));
}

std::string Deflated(const std::string &bytes) {
    uLongf size = compressBound(bytes.size());
    std::string deflated(size, '\0');
    compress(reinterpret_cast<Bytef *>(deflated.data()), &size, reinterpret_cast<const Bytef *>(bytes.data()),
             bytes.size());
    deflated.resize(size);
    return deflated;
}

std::string RawPicture(int side) {
    std::string pixels;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int slope = 255 * (x + y) / (2 * side);
            pixels.append({'\xFF', static_cast<char>(255 - slope), '\x40', static_cast<char>(slope)});
        }
    }
    return pixels;
}

// Fields of a picture's head that the driver reads: the format at 48, the size at 56 and 60, the size for
// display at 76 and 80. The picture begins behind the tag "data" at 204.
std::string PictureBox(int side, CachePictures stored) {
    constexpr std::uint32_t kDataOffset = 208;
    const bool raw = stored == CachePictures::kRaw;
    const std::string picture = raw ? RawPicture(side) : PngPicture(side);
    const std::string size =
        BigEndian(static_cast<std::uint32_t>(side)) + BigEndian(static_cast<std::uint32_t>(side));
    std::string head = BigEndian(static_cast<std::uint32_t>(picture.size()) + kDataOffset) + "item" +
                       BigEndian(kDataOffset) + Zeros(32) + "locl" + (raw ? "ARGb" : "PNGf") + Zeros(4) +
                       size + Zeros(12) + size;
    head.resize(kDataOffset - 4, '\0');
    return head + "data" + picture;
}

}  // namespace

std::string PngPicture(int side) {
    std::string rows;
    for (int y = 0; y < side; ++y) {
        rows += '\0';  // each row begins with its filter, here none
        for (int x = 0; x < side; ++x)
            rows += static_cast<char>(255 * (x + y) / (2 * side));
    }
    const auto size = static_cast<std::uint32_t>(side);
    // Size, 8 bits of grey, usual compression, usual filters, not interlaced.
    const std::string header = BigEndian(size) + BigEndian(size) + std::string("\x08\x00\x00\x00\x00", 5);
    return "\x89PNG\r\n\x1A\n" + PngChunk("IHDR", header) + PngChunk("IDAT", Deflated(rows)) +
           PngChunk("IEND", {});
}

std::string ArtworkCacheFile(const std::vector<int> &sides, CachePictures stored) {
    constexpr std::uint32_t kHeaderLength = 284;
    std::string file = BigEndian(kHeaderLength) + "itch" + Zeros(16) + "artw";
    file.resize(kHeaderLength, '\0');
    for (const int side : sides)
        file += PictureBox(side, stored);
    return file;
}

std::filesystem::path ArtworkCachePath(const std::string &library_id, const std::string &track_id) {
    std::filesystem::path path = std::filesystem::path("Album Artwork") / "Cache" / library_id;
    for (std::size_t digit = 15; digit >= 13; --digit) {
        char folder[8];
        std::snprintf(folder, sizeof folder, "%02ld",
                      std::strtol(track_id.substr(digit, 1).c_str(), nullptr, 16));
        path /= folder;
    }
    return path / (library_id + "-" + track_id + ".itc");
}
