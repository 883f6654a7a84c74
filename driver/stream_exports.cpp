// Streams: the bytes behind a path.
#include <cstdio>
#include <memory>
#include <optional>

#include "driver/driver_log.h"
#include "driver/driver_stream.h"
#include "driver/export_guard.h"
#include "driver/itunes_driver.h"
#include "driver/stream_source.h"
#include "platform/windows/windows_api.h"

namespace {

// Null means that the arguments will do.
const char *FaultOf(const LibraryDriver *driver, int32_t device_index, const char *path_text,
                    DriverStream **out) {
    if (driver == nullptr) return "Local driver is not available";
    if (path_text == nullptr) return "Local driver path is not available";
    if (out == nullptr) return "Receive local stream address is zero";
    if (device_index != 0) return "iTunes driver device index is not zero";
    return nullptr;
}

struct PathCloser {
    void operator()(DriverPath *path) const { CloseDriverPath(path); }
};

// Empty after a line in the log. The path is open only as long as its attributes are read.
std::optional<StreamSource> SourceOf(LibraryDriver *driver, int32_t device_index, const char *path_text) {
    DriverPath *opened = nullptr;
    if (OpenDriverPath(driver, device_index, path_text, &opened) < 0) {
        WriteDriverLog("Open iTunes path \"%s\" failed", path_text);
        return std::nullopt;
    }
    const std::unique_ptr<DriverPath, PathCloser> path(opened);
    return FindStreamSource(path.get(), path_text);
}

int32_t Open(LibraryDriver *driver, int32_t device_index, const char *path_text, DriverStream **out) {
    if (const char *fault = FaultOf(driver, device_index, path_text, out)) {
        WriteDriverLog("%s", fault);
        return -1;
    }
    auto source = SourceOf(driver, device_index, path_text);
    if (!source) return -1;
    if (source->is_folder) {
        const auto archive = PackFolder(source->file);
        if (!archive) return -2;
        source->file = *archive;
    }
    auto stream = std::make_unique<DriverStream>();
    stream->driver = driver;
    stream->file = FileHandle(source->file, L"rb");
    if (!stream->file) {
        WriteDriverLog("iTunes file stream \"%s\"open failed", path_text);
        return -1;
    }
    stream->range_size = source->size;
    if (source->offset != 0) {
        _fseeki64(stream->file.get(), source->offset, SEEK_SET);
        stream->range_offset = source->offset;
    }
    *out = stream.release();
    return 0;
}

// Runs an operation on a stream, which must be there.
template <typename Operation>
int32_t OnStream(DriverStream *stream, Operation operation) {
    return GuardExport([&] {
        if (stream != nullptr) return operation(*stream);
        WriteDriverLog("iTunes stream is not available");
        return 1;
    });
}

}  // namespace

int32_t OpenDriverStream(LibraryDriver *driver, int32_t device_index, const char *path_text,
                         DriverStream **stream) {
    return GuardExport([=] { return Open(driver, device_index, path_text, stream); });
}

int32_t CloseDriverStream(DriverStream *stream) {
    return OnStream(stream, [](DriverStream &open) {
        delete &open;
        return 0;
    });
}

int32_t ReadDriverStream(DriverStream *stream, void *buffer, int32_t count) {
    return OnStream(stream, [=](DriverStream &open) { return ReadStream(open, buffer, count); });
}

int32_t WriteDriverStream(DriverStream *stream, const void *buffer, int32_t count) {
    return OnStream(stream, [=](DriverStream &open) { return WriteStream(open, buffer, count); });
}

int32_t SeekDriverStream(DriverStream *stream, int64_t offset, int32_t origin) {
    return OnStream(stream, [=](DriverStream &open) { return SeekStream(open, offset, origin); });
}
