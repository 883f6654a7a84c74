// The driver, linked behind the exports that stand here, so that all others are its own. These count what is
// open and let go wrong what a library cannot be made to. By environment variables:
//   FAIL_READ    the number of the read of a stream that fails
//   PAUSE        milliseconds before each read and each piece of a copy
//   COPY_ERRORS  "NAME=NUMBER ...": copies of sources of these names fail
//   LOST_BEFORE_COPIES, LOST_BEHIND_COPIES   a file or folder that is removed then
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "driver/itunes_driver.h"

namespace {

int open_things = 0;
CopyProgressCallback host_callback = nullptr;
void *host_context = nullptr;

template <typename Function>
Function *Real(Function *, const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

std::string Variable(const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

int Number(const char *name) {
    return std::atoi(Variable(name).c_str());
}

int32_t Opened(int32_t result) {
    open_things += result == 0 ? 1 : 0;
    return result;
}

int32_t PassOn(const CopyProgress *progress, void *) {
    std::this_thread::sleep_for(std::chrono::milliseconds(Number("PAUSE")));
    return host_callback(progress, host_context);
}

}  // namespace

int32_t UninitializeDriverPath(LibraryDriver *driver) {
    if (open_things != 0) std::fputs("LEFT OPEN\n", stderr);
    return Real(UninitializeDriverPath, __func__)(driver);
}

int32_t OpenDriverPath(LibraryDriver *driver, int32_t device, const char *text, DriverPath **path) {
    return Opened(Real(OpenDriverPath, __func__)(driver, device, text, path));
}

int32_t CloseDriverPath(DriverPath *path) {
    --open_things;
    return Real(CloseDriverPath, __func__)(path);
}

int32_t OpenDriverStream(LibraryDriver *driver, int32_t device, const char *text, DriverStream **stream) {
    return Opened(Real(OpenDriverStream, __func__)(driver, device, text, stream));
}

int32_t CloseDriverStream(DriverStream *stream) {
    --open_things;
    return Real(CloseDriverStream, __func__)(stream);
}

int32_t ReadDriverStream(DriverStream *stream, void *buffer, int32_t count) {
    static int reads = 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(Number("PAUSE")));
    if (++reads == Number("FAIL_READ")) return -1;
    return Real(ReadDriverStream, __func__)(stream, buffer, count);
}

int32_t StartPathCopy(LibraryDriver *driver, uintptr_t word, CopyProgressCallback callback, void *context,
                      int32_t chunk_size) {
    ++open_things;
    host_callback = callback;
    host_context = context;
    std::filesystem::remove_all(Variable("LOST_BEFORE_COPIES"));
    return Real(StartPathCopy, __func__)(driver, word, &PassOn, nullptr, chunk_size);
}

int32_t CopyDriverPath(LibraryDriver *driver, int32_t device, const char *text,
                       const CopySourceInfo *source) {
    const std::string errors = Variable("COPY_ERRORS");
    const std::string name = std::filesystem::path(source->source_path).filename().string() + "=";
    const std::size_t found = errors.find(name);
    if (found == std::string::npos) return Real(CopyDriverPath, __func__)(driver, device, text, source);
    CopyProgress progress{};
    progress.copy_state = 3;
    progress.copy_error = std::stoi(errors.substr(found + name.size()));
    return host_callback(&progress, host_context);
}

int32_t FinishPathCopy(LibraryDriver *driver, uintptr_t word) {
    --open_things;
    std::filesystem::remove_all(Variable("LOST_BEHIND_COPIES"));
    return Real(FinishPathCopy, __func__)(driver, word);
}
