// Reads arbitrary bytes as a property list. Whatever is read is written again in the binary form, read back
// and compared, so that the fuzzer reaches both ends.
#include <cstdlib>
#include <string>

#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/value.h"
#include "platform/core_foundation/writer.h"

namespace {

CFPropertyListRef Read(const uint8_t *bytes, size_t size) {
    const CFDataRef data = CFDataCreate(kCFAllocatorDefault, bytes, static_cast<CFIndex>(size));
    const CFPropertyListRef list =
        CFPropertyListCreateWithData(kCFAllocatorDefault, data, kCFPropertyListImmutable, nullptr, nullptr);
    CFRelease(data);
    return list;
}

void CheckRoundTrip(CFPropertyListRef list) {
    std::string written;
    if (!core_foundation::WriteBinary(*core_foundation::ToValue(list), written)) std::abort();
    const CFPropertyListRef copy = Read(reinterpret_cast<const uint8_t *>(written.data()), written.size());
    if (copy == nullptr || CFGetTypeID(copy) != CFGetTypeID(list)) std::abort();
    std::string again;
    if (!core_foundation::WriteBinary(*core_foundation::ToValue(copy), again) || again != written)
        std::abort();
    CFRelease(copy);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const CFPropertyListRef list = Read(bytes, size);
    if (list == nullptr) return 0;
    CheckRoundTrip(list);
    CFRelease(list);
    return 0;
}
