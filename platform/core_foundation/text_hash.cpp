#include "platform/core_foundation/text_hash.h"

#include <random>

namespace core_foundation {

namespace {

uint64_t RandomSeed() {
    std::random_device device;
    return static_cast<uint64_t>(device()) << 32 | device();
}

}  // namespace

const uint64_t kHashSeed = RandomSeed();

}  // namespace core_foundation
