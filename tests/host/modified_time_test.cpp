#include "host/modified_time.h"

#include <gtest/gtest.h>

#include "tests/support/scoped_environment.h"

namespace {

TEST(ModifiedTime, NumbersSince1904InLocalTimeAreTold) {
    const ScopedEnvironment zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(velmarhost::TimeOfNumber(1286553600), 1286553600);
    EXPECT_EQ(velmarhost::TimeOfNumber(1286553600 + int64_t{2082844800} + 7200), 1286553600) << "in summer";
    EXPECT_EQ(velmarhost::TimeOfNumber(1262304000 + int64_t{2082844800} + 3600), 1262304000) << "in winter";
    EXPECT_EQ(velmarhost::TimeOfNumber((int64_t{1} << 31) - 1), (int64_t{1} << 31) - 1);
    EXPECT_EQ(velmarhost::TimeOfNumber(int64_t{1} << 62), int64_t{1} << 62);
}

}  // namespace
