#include "driver/driver_stream.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "driver/driver_log.h"
#include "platform/windows/windows_api.h"

namespace {

// A sum that does not fit becomes the nearest number, which lies outside every range.
int64_t SaturatingSum(int64_t base, int64_t offset) {
    constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
    constexpr int64_t kMost = std::numeric_limits<int64_t>::max();
    if (offset > 0 && base > kMost - offset) return kMost;
    if (offset < 0 && base < kLeast - offset) return kLeast;
    return base + offset;
}

int64_t RangeEnd(const DriverStream &stream) {
    return SaturatingSum(stream.range_offset, stream.range_size);
}

int32_t RefuseSize(const DriverStream &stream) {
    WriteDriverLog("Seek operation out of thumb size = %lld", static_cast<long long>(stream.range_size));
    return -1;
}

int32_t RefuseRange(const DriverStream &stream, int64_t position) {
    WriteDriverLog("Seek operation out of thumb range: cur = %lld, offset = %lld and size %lld",
                   static_cast<long long>(position), static_cast<long long>(stream.range_offset),
                   static_cast<long long>(stream.range_size));
    return -1;
}

// The host counts from the start of the range, the file from its own.
int32_t SeekRange(DriverStream &stream, int64_t offset, int32_t origin) {
    FILE *file = stream.file.get();
    const int64_t start = stream.range_offset;
    const int64_t end = RangeEnd(stream);
    const int64_t position = _ftelli64(file);
    if (origin == SEEK_SET) {
        const int64_t target = SaturatingSum(start, offset);
        // No lower test: a negative offset reaches the bytes in front of the range.
        if (target > end) return RefuseSize(stream);
        _fseeki64(file, target, SEEK_SET);
    } else if (origin == SEEK_CUR) {
        const int64_t target = SaturatingSum(position, offset);
        if (target > end || target < start) return RefuseRange(stream, position);
        _fseeki64(file, offset, SEEK_CUR);
    } else if (origin == SEEK_END) {
        const int64_t target = SaturatingSum(end, offset);
        if (target > end || target < start) return RefuseSize(stream);
        _fseeki64(file, target, SEEK_SET);
    } else {
        _fseeki64(file, offset, origin);
    }
    return 0;
}

}  // namespace

int32_t ReadStream(DriverStream &stream, void *buffer, int32_t count) {
    int64_t wanted = count;
    if (stream.range_offset != 0) {
        wanted = std::min(wanted, SaturatingSum(RangeEnd(stream), -_ftelli64(stream.file.get())));
    }
    if (wanted <= 0 || buffer == nullptr) return 0;
    return static_cast<int32_t>(std::fread(buffer, 1, static_cast<size_t>(wanted), stream.file.get()));
}

int32_t WriteStream(DriverStream &stream, const void *buffer, int32_t count) {
    if (count <= 0 || buffer == nullptr) return 0;
    return static_cast<int32_t>(std::fwrite(buffer, 1, static_cast<size_t>(count), stream.file.get()));
}

int32_t SeekStream(DriverStream &stream, int64_t offset, int32_t origin) {
    if (stream.range_offset != 0) return SeekRange(stream, offset, origin);
    // What the file makes of it shows at the next read.
    _fseeki64(stream.file.get(), offset, origin);
    return 0;
}
