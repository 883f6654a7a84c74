#include "driver/driver_log.h"

#include <cstdarg>
#include <cstdio>

#include "platform/velmar_path/velmar_path.h"

namespace {

constexpr char kPrefix[] = "[iTunes] ";
constexpr size_t kPrefixBytes = sizeof kPrefix - 1;
constexpr size_t kLineBytes = 512;

}  // namespace

void WriteDriverLog(const char *format, ...) {
    // A line of its own for each call: the start-up thread may log while an export does.
    char line[kLineBytes];
    std::snprintf(line, sizeof line, "%s", kPrefix);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line + kPrefixBytes, sizeof line - kPrefixBytes, format, arguments);
    va_end(arguments);
    // As finished text, so that no host has to know the driver's formats.
    WriteVelmarLog("%s", line);
}
