#include "host/driver_module.h"

#include <filesystem>

#include "host/host_error.h"
#include "host/system.h"

namespace velmarhost {
namespace {

constexpr const char *kModuleName = "libitunes_driver.so";

// What to load: a path with a separator in it, as the loader takes a bare name for one of its own folders.
std::string ModuleToLoad(const std::string &file) {
    if (!file.empty()) return std::filesystem::absolute(file).string();
    const std::filesystem::path beside = ExecutableFolder() / ".." / "lib" / kModuleName;
    std::error_code ignored;
    return std::filesystem::exists(beside, ignored) ? beside.string() : kModuleName;
}

template <typename Function>
void Resolve(void *module, const char *name, Function &function) {
    void *symbol = FindModuleSymbol(module, name);
    if (symbol == nullptr) {
        throw HostError(ExitCode::kDriver, std::string("the driver module has no export \"") + name +
                                               "\". Name another module with --driver FILE.");
    }
    function = reinterpret_cast<Function>(symbol);
}

}  // namespace

DriverModule LoadDriverModule(const std::string &file) {
    std::string error;
    void *module = LoadModule(ModuleToLoad(file), error);
    if (module == nullptr) {
        throw HostError(ExitCode::kDriver,
                        "the driver module could not be loaded: " + error + ". Name it with --driver FILE.");
    }
    DriverModule driver{};
    Resolve(module, "InitializeDriverPath", driver.initialize);
    Resolve(module, "UninitializeDriverPath", driver.uninitialize);
    Resolve(module, "OpenDriverPath", driver.open_path);
    Resolve(module, "CloseDriverPath", driver.close_path);
    Resolve(module, "GetDriverPathInfo", driver.get_info);
    Resolve(module, "StartPathCopy", driver.start_copy);
    Resolve(module, "CopyDriverPath", driver.copy_path);
    Resolve(module, "FinishPathCopy", driver.finish_copy);
    Resolve(module, "OpenDriverStream", driver.open_stream);
    Resolve(module, "CloseDriverStream", driver.close_stream);
    Resolve(module, "ReadDriverStream", driver.read_stream);
    Resolve(module, "SeekDriverStream", driver.seek_stream);
    return driver;
}

}  // namespace velmarhost
