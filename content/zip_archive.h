#ifndef CONTENT_ZIP_ARCHIVE_H
#define CONTENT_ZIP_ARCHIVE_H

#include <minizip/unzip.h>
#include <minizip/zip.h>

#include <cstdint>
#include <memory>
#include <string_view>

// Zip archives by path. Paths are Windows paths in UTF-8. A handle has one cursor and belongs to one thread.

struct ZipReadCloser {
    void operator()(unzFile zip) const { unzClose(zip); }
};
struct ZipWriteCloser {
    void operator()(zipFile zip) const { zipClose(zip, nullptr); }
};
using ZipReadHandle = std::unique_ptr<void, ZipReadCloser>;
using ZipWriteHandle = std::unique_ptr<void, ZipWriteCloser>;

// What the copies in and out of archives move at a time.
inline constexpr uint32_t kZipBlockBytes = 1024;

// Null if there is no archive that can be read. A pipe or a folder is none, and minizip opens none without
// entries.
ZipReadHandle OpenZipForRead(std::string_view path);

// True for an archive without entries, which is a file that begins with the end of its directory.
bool IsEmptyZip(std::string_view path);

// A new, empty archive in the place of whatever file was there; null if the file cannot be made. The entries
// have reached the system only once zipClose has given ZIP_OK.
ZipWriteHandle CreateZip(std::string_view path);

#endif
