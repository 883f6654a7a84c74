#ifndef TESTS_SUPPORT_ZIP_BUILDER_H
#define TESTS_SUPPORT_ZIP_BUILDER_H

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/byte_text.h"

// One entry as it will stand in the archive. A test changes what it wants to be wrong.
struct ZipBuilderEntry {
    std::string name;
    std::string data;  // as stored, so compressed for method 8
    std::uint32_t method = 0;
    std::uint32_t flags = 0;
    std::uint32_t crc = 0;
    std::uint32_t claimed_size = 0;
};

inline std::uint32_t Crc32(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(bytes.data()), static_cast<uInt>(bytes.size())));
}

inline ZipBuilderEntry StoredEntry(const std::string &name, const std::string &content) {
    return {name, content, 0, 0, Crc32(content), static_cast<std::uint32_t>(content.size())};
}

inline ZipBuilderEntry DeflatedEntry(const std::string &name, const std::string &content) {
    z_stream stream = {};
    if (deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("deflateInit2");
    }
    std::string source = content;
    std::string packed(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(source.data());
    stream.avail_in = static_cast<uInt>(source.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END) throw std::runtime_error("deflate");
    return {name, packed, 8, 0, Crc32(content), static_cast<std::uint32_t>(content.size())};
}

// The fields that a local header and a central one have in common, from the version needed to the extra
// length.
inline std::string CommonZipFields(const ZipBuilderEntry &entry) {
    return LittleEndian(20, 2) + LittleEndian(entry.flags, 2) + LittleEndian(entry.method, 2) + Zeros(4) +
           LittleEndian(entry.crc) + LittleEndian(static_cast<std::uint32_t>(entry.data.size())) +
           LittleEndian(entry.claimed_size) + LittleEndian(static_cast<std::uint32_t>(entry.name.size()), 2) +
           Zeros(2);
}

inline std::string BuildZip(const std::vector<ZipBuilderEntry> &entries) {
    std::string files;
    std::string directory;
    for (const ZipBuilderEntry &entry : entries) {
        directory += "PK\1\2" + LittleEndian(20, 2) + CommonZipFields(entry) + Zeros(10) +
                     LittleEndian(static_cast<std::uint32_t>(files.size())) + entry.name;
        files += "PK\3\4" + CommonZipFields(entry) + entry.name + entry.data;
    }
    const std::string count =
        LittleEndian(static_cast<std::uint32_t>(std::min<std::size_t>(entries.size(), 0xFFFF)), 2);
    return files + directory + "PK\5\6" + Zeros(4) + count + count +
           LittleEndian(static_cast<std::uint32_t>(directory.size())) +
           LittleEndian(static_cast<std::uint32_t>(files.size())) + Zeros(2);
}

#endif
