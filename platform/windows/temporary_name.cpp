#include "platform/windows/temporary_name.h"

#include <sys/random.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cinttypes>
#include <cstdint>
#include <cstdio>

std::string TemporaryPathIn(const std::string &folder) {
    static std::atomic<uint64_t> counter = 0;
    // Without random bytes, which a sandbox may refuse, process and counter still tell the names apart.
    uint64_t random = 0;
    if (getrandom(&random, sizeof random, GRND_NONBLOCK) < 0) random = static_cast<uint64_t>(getpid());
    std::array<char, 64> name;
    std::snprintf(name.data(), name.size(), "/.tmp-%016" PRIx64 "-%" PRIu64, random, ++counter);
    return folder + name.data();
}
