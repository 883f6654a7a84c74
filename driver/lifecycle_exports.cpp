// Start and stop of one library.
#include "driver/driver_log.h"
#include "driver/export_guard.h"
#include "driver/itunes_driver.h"
#include "driver/library_driver.h"
#include "driver/startup_thread.h"

namespace {

// Ends a driver in whatever state its load has left it.
struct DriverCloser {
    void operator()(LibraryDriver *driver) const {
        driver->startup_thread.reset();
        DestroyLibrary(driver);
        delete driver;
    }
};

using OwnedDriver = std::unique_ptr<LibraryDriver, DriverCloser>;

int32_t Initialize(DriverStartupCallback callback, void *context, LibraryDriver **out) {
    if (out == nullptr) {
        WriteDriverLog("Receive iTunes driver address is zero");
        return -1;
    }
    OwnedDriver driver(new LibraryDriver);
    driver->host_callback = callback;
    driver->host_context = context;
    const int32_t created = CreateLibrary(driver.get());
    if (created < 0) {
        WriteDriverLog("Create iTunes library failed");
        return created;
    }
    const bool library_open = driver->library_plist != nullptr || driver->parser != nullptr;
    driver->startup_thread = std::make_unique<StartupThread>(callback, context, library_open);
    *out = driver.release();
    (*out)->startup_thread->Start();
    return 0;
}

int32_t Uninitialize(LibraryDriver *driver) {
    if (driver == nullptr) {
        WriteDriverLog("iTunes driver is not available");
        return 1;
    }
    OwnedDriver{driver}.reset();
    return 0;
}

}  // namespace

int32_t InitializeDriverPath(DriverStartupCallback callback, void *context, uintptr_t /*reserved*/,
                             LibraryDriver **driver) {
    return GuardExport([=] { return Initialize(callback, context, driver); });
}

int32_t UninitializeDriverPath(LibraryDriver *driver) {
    return GuardExport([=] { return Uninitialize(driver); });
}
