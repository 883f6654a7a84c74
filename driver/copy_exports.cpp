// A batch of copies into iTunes.
#include "driver/copy_batch.h"
#include "driver/driver_log.h"
#include "driver/export_guard.h"
#include "driver/itunes_driver.h"
#include "driver/itunes_window.h"
#include "driver/library_driver.h"
#include "driver/rescan.h"
#include "library/refresh.h"

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

int32_t CopyDriverPath(LibraryDriver *driver, int32_t device_index, const char *path_text,
                       const CopySourceInfo *source) {
    return GuardExport([=] {
        if (const char *fault = FaultOf(driver, device_index, path_text, source)) {
            WriteDriverLog("%s", fault);
            return -1;
        }
        return CopyIntoITunes(driver, path_text, *source);
    });
}

int32_t FinishPathCopy(LibraryDriver *driver, uintptr_t /*word*/) {
    return GuardExport([=] {
        if (driver == nullptr) return RefuseDriver();
        driver->copy_callback = nullptr;
        driver->copy_context = nullptr;
        // Neither result is looked at: a library that cannot be read now stays as it was.
        if (ShowITunesWindow()) RefreshLibrary(driver);
        RescanLocalFolders(driver);
        return 0;
    });
}
