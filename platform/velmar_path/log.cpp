#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/velmar_path/velmar_path.h"

namespace {

struct LogTarget {
    std::mutex mutex;
    VelmarLogHandler handler = nullptr;
    void *context = nullptr;
};

LogTarget &Target() {
    static LogTarget target;
    return target;
}

// The C library of other systems spells the length of "%I64d" in another way.
std::string NativeFormat(std::string_view format) {
    constexpr std::string_view kForeign = "%I64";
    std::string native(format);
    for (size_t at = 0; (at = native.find(kForeign, at)) != std::string::npos; at += 3) {
        native.replace(at, kForeign.size(), "%ll");
    }
    return native;
}

// The finished line; empty when the format cannot be printed.
std::string Print(const char *format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string line;
    if (length > 0) {
        line.resize(static_cast<size_t>(length));
        std::vsnprintf(line.data(), line.size() + 1, format, again);
    }
    va_end(again);
    return line;
}

void WriteToStandardError(std::string_view line) {
    const bool ended = line.ends_with('\n');
    std::fprintf(stderr, "%.*s%s", static_cast<int>(line.size()), line.data(), ended ? "" : "\n");
}

}  // namespace

int32_t WriteVelmarLog(const char *format, ...) {
    if (format == nullptr) return -1;
    try {
        va_list arguments;
        va_start(arguments, format);
        const std::string line = Print(NativeFormat(format).c_str(), arguments);
        va_end(arguments);

        LogTarget &target = Target();
        std::unique_lock lock(target.mutex);
        const VelmarLogHandler handler = target.handler;
        void *const context = target.context;
        // A handler may log or change the handler, so it runs without the lock.
        lock.unlock();
        if (handler != nullptr) {
            handler(line.c_str(), context);
        } else {
            WriteToStandardError(line);
        }
    } catch (...) {
        return -1;
    }
    return 0;
}

void SetVelmarLogHandler(VelmarLogHandler handler, void *context) {
    LogTarget &target = Target();
    const std::lock_guard lock(target.mutex);
    target.handler = handler;
    target.context = context;
}
