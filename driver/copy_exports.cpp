// A batch of copies into iTunes.
#include "driver/driver_log.h"
#include "driver/export_guard.h"
#include "driver/itunes_driver.h"
#include "driver/library_driver.h"

namespace {

int32_t RefuseDriver() {
    WriteDriverLog("Local driver is not available");
    return -1;
}

// Null means that the arguments will do.
const char *FaultOf(const LibraryDriver *driver, int32_t device_index, const char *path_text,
                    const CopySourceInfo *source) {
    if (driver == nullptr) return "Local driver is not available";
    if (path_text == nullptr) return "Local driver path is not available";
    if (source == nullptr) return "Copy source info is not available";
    if (device_index != 0) return "Local driver device index is not zero";
    return nullptr;
}

}  // namespace

int32_t StartPathCopy(LibraryDriver *driver, uintptr_t /*word*/, CopyProgressCallback callback, void *context,
                      int32_t chunk_size) {
    return GuardExport([=] {
        if (driver == nullptr) return RefuseDriver();
        driver->copy_callback = callback;
        driver->copy_context = context;
        driver->copy_chunk_size = chunk_size;
        return 0;
    });
}

// Copying is not there yet: every copy is refused, before the host hears of a start.
int32_t CopyDriverPath(LibraryDriver *driver, int32_t device_index, const char *path_text,
                       const CopySourceInfo *source) {
    return GuardExport([=] {
        const char *fault = FaultOf(driver, device_index, path_text, source);
        WriteDriverLog("%s", fault != nullptr ? fault : "Copying into iTunes is not supported");
        return -1;
    });
}

int32_t FinishPathCopy(LibraryDriver *driver, uintptr_t /*word*/) {
    return GuardExport([=] {
        if (driver == nullptr) return RefuseDriver();
        driver->copy_callback = nullptr;
        driver->copy_context = nullptr;
        return 0;
    });
}
