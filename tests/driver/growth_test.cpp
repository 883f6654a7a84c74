// Whatever a file holds, reading it takes no more memory than some times its size. How the time grows is for
// the benchmark to say.
#include <gtest/gtest.h>
#include <malloc.h>

#include "bench/growth_cases.h"
#include "bench/measure.h"
#include "platform/velmar_path/velmar_path.h"
#include "tests/support/temp_folder.h"

namespace {

// It has memory of its own; then the inputs only have to be read without a fault.
constexpr bool kHasSanitizer = DRIVER_HAS_SANITIZER;

TEST(Growth, MemoryStaysInProportionToTheInput) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    for (const GrowthCase &growth : GrowthCases()) {
        const TempFolder folder;
        const GrowthInput input = growth.make(folder.path(), 2 * growth.size);
        malloc_trim(0);  // what is free here would not count there
        const double allowed = growth.memory_factor * static_cast<double>(input.bytes) + (16 << 20);
        const double peak = MeasureInChild(input.read).peak_bytes;
        EXPECT_TRUE(peak <= allowed || kHasSanitizer) << growth.name << ": " << peak << " of " << allowed;
    }
    SetVelmarLogHandler(nullptr, nullptr);
}

}  // namespace
