#ifndef HOST_DRIVER_MODULE_H
#define HOST_DRIVER_MODULE_H

#include <string>

#include "driver/itunes_driver.h"

namespace velmarhost {

// The exports of a loaded driver that this host calls.
struct DriverModule {
    decltype(&InitializeDriverPath) initialize;
    decltype(&UninitializeDriverPath) uninitialize;
    decltype(&OpenDriverPath) open_path;
    decltype(&CloseDriverPath) close_path;
    decltype(&GetDriverPathInfo) get_info;
    decltype(&StartPathCopy) start_copy;
    decltype(&CopyDriverPath) copy_path;
    decltype(&FinishPathCopy) finish_copy;
    decltype(&OpenDriverStream) open_stream;
    decltype(&CloseDriverStream) close_stream;
    decltype(&ReadDriverStream) read_stream;
    decltype(&SeekDriverStream) seek_stream;
};

// Loads the driver from `file`, or with an empty text the one that was installed with this program: ../lib
// beside its folder, then wherever the system looks for libraries. Throws HostError with code kDriver.
DriverModule LoadDriverModule(const std::string &file);

}  // namespace velmarhost

#endif
