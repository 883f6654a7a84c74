#ifndef DRIVER_COPY_SOURCE_H
#define DRIVER_COPY_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "driver/itunes_driver.h"
#include "platform/windows/file_handle.h"

// CopySourceInfo::source_type.
namespace copy_source_type {
constexpr int32_t kHostStream = 0;
constexpr int32_t kLocalFile = 1;
constexpr int32_t kMemory = 2;
}  // namespace copy_source_type

// The bytes that a copy reads, from front to back.
struct CopySource {
    const CopySourceInfo *info = nullptr;
    int64_t size = 0;  // what the host says
    size_t piece = 0;  // the most that is read at a time
    int64_t position = 0;
    FileHandle file;                 // of a local file, without a buffer of its own
    std::unique_ptr<char[]> buffer;  // of `piece` bytes; a block of memory needs none

    bool IsLocalFile() const { return static_cast<bool>(file); }
};

// The number of bytes that a source has, by the record or by the attributes in it.
int64_t CopySourceSize(const CopySourceInfo &info);

// Empty when there is no such source. `chunk` is at least 1.
std::optional<CopySource> OpenCopySource(const CopySourceInfo &info, int64_t size, int32_t chunk);

// The number of bytes that are to come next. A file that has grown since the host looked at it would
// otherwise end in some bytes of what was added.
size_t NextPiece(const CopySource &source);

// The next bytes, at most a piece and never beyond the source's size; valid until the next call. Empty when
// the source gives none, or more than it was asked for.
std::string_view ReadCopySource(CopySource &source);

#endif
