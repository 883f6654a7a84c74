#ifndef HOST_LIBRARY_FAILURE_H
#define HOST_LIBRARY_FAILURE_H

#include <cstdint>
#include <string>

#include "host/driver_log.h"
#include "host/private_environment.h"

namespace velmarhost {

// Why no library is open, what was looked for, and what a user can do. `result` is the driver's.
std::string ExplainLibraryFailure(const LibraryChoice &choice, const DriverLog &log, int32_t result);

}  // namespace velmarhost

#endif
