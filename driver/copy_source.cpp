#include "driver/copy_source.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "driver/attributes.h"

namespace {

// A larger piece copies no faster. The host's chunk size may be any number.
constexpr int64_t kLargestPiece = 64 << 20;

size_t PieceSize(int64_t size, int32_t chunk) {
    return static_cast<size_t>(std::clamp<int64_t>(std::min<int64_t>(size, chunk), 1, kLargestPiece));
}

// What a read function claims to have delivered beyond the room that it was given cannot be true, and has
// done harm if it is: nothing of it is used.
size_t ReadFromHost(const CopySource &source, size_t count) {
    const int32_t delivered = source.info->read_function(source.info->source_handle, source.buffer.get(),
                                                         static_cast<int32_t>(count));
    return delivered > 0 && static_cast<size_t>(delivered) <= count ? static_cast<size_t>(delivered) : 0;
}

}  // namespace

int64_t CopySourceSize(const CopySourceInfo &info) {
    if (info.source_size != 0 || info.source_type != copy_source_type::kHostStream) return info.source_size;
    const auto size = FindAttribute(info.source.attributes, "st_size");
    return size ? std::strtoll(size->data(), nullptr, 10) : 0;
}

std::optional<CopySource> OpenCopySource(const CopySourceInfo &info, int64_t size, int32_t chunk) {
    CopySource source;
    source.info = &info;
    source.size = size;
    source.piece = PieceSize(size, chunk);
    switch (info.source_type) {
        case copy_source_type::kHostStream:
            if (info.source_handle == nullptr || info.read_function == nullptr) return std::nullopt;
            break;
        case copy_source_type::kLocalFile:
            if (info.source_path != nullptr) source.file = FileHandle(info.source_path, L"rb");
            if (!source.file) return std::nullopt;
            std::setvbuf(source.file.get(), nullptr, _IONBF, 0);
            break;
        case copy_source_type::kMemory:
            if (info.source_handle == nullptr) return std::nullopt;
            return source;
        default:
            return std::nullopt;
    }
    source.buffer = std::make_unique_for_overwrite<char[]>(source.piece);
    return source;
}

size_t NextPiece(const CopySource &source) {
    const auto left = static_cast<uint64_t>(source.size - source.position);
    return static_cast<size_t>(std::min<uint64_t>(source.piece, left));
}

std::string_view ReadCopySource(CopySource &source) {
    size_t count = NextPiece(source);
    const char *bytes = source.buffer.get();
    if (source.info->source_type == copy_source_type::kHostStream) {
        count = ReadFromHost(source, count);
    } else if (source.IsLocalFile()) {
        count = std::fread(source.buffer.get(), 1, count, source.file.get());
    } else {
        bytes = static_cast<const char *>(source.info->source_handle) + source.position;
    }
    source.position += static_cast<int64_t>(count);
    return {bytes, count};
}
