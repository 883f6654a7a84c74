#ifndef DRIVER_EXPORT_GUARD_H
#define DRIVER_EXPORT_GUARD_H

#include <cstdint>
#include <exception>

#include "driver/driver_log.h"

// Runs the body of an export. No exception reaches the host: one that escapes, such as for want of memory, is
// logged and becomes -1.
template <typename Body>
int32_t GuardExport(Body body) noexcept {
    try {
        return body();
    } catch (const std::exception &error) {
        WriteDriverLog("Unexpected failure: %s", error.what());
    } catch (...) {
        WriteDriverLog("Unexpected failure");
    }
    return -1;
}

#endif
