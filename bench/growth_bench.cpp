// For each reader its worst input of a size and of twice the size: how time and memory grow. Ends with 1 when
// a time more than grows with the input.

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string_view>

#include "bench/growth_cases.h"
#include "bench/measure.h"
#include "fixtures/temp_folder.h"
#include "platform/velmar_path/velmar_path.h"

namespace {

constexpr int kRounds = 5;
constexpr double kMostGrowth = 2.3;
// Below this a run is mostly noise.
constexpr double kLeastSeconds = 0.0005;

// The least of some rounds, which is what the work costs where nothing disturbs it.
Cost LeastCost(const GrowthInput &input) {
    Cost least = MeasureInChild(input.read);
    for (int round = 1; round < kRounds; ++round)
        least.seconds = std::min(least.seconds, MeasureInChild(input.read).seconds);
    return least;
}

double MiB(double bytes) {
    return bytes / (1 << 20);
}

bool GrowsWell(const GrowthCase &growth) {
    const TempFolder once;
    const TempFolder twice;
    const GrowthInput input = growth.make(once.path(), growth.size);
    const GrowthInput double_input = growth.make(twice.path(), 2 * growth.size);
    malloc_trim(0);
    const Cost cost = LeastCost(input);
    const Cost double_cost = LeastCost(double_input);
    const double ratio = double_cost.seconds / std::max(cost.seconds, kLeastSeconds);
    std::printf("%-40s %7.2f MiB %8.2f ms %8.2f ms %6.2f %7.1f MiB %6.1f x%s\n", growth.name,
                MiB(static_cast<double>(input.bytes)), cost.seconds * 1000, double_cost.seconds * 1000, ratio,
                MiB(double_cost.peak_bytes), double_cost.peak_bytes / static_cast<double>(double_input.bytes),
                ratio > kMostGrowth ? "  GROWS" : "");
    std::fflush(stdout);
    return ratio <= kMostGrowth;
}

}  // namespace

// An argument is a part of the names of the readers to measure.
int main(int count, char **arguments) try {
    // Limits that are hit are no news here.
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const std::string_view wanted = count > 1 ? arguments[1] : "";
    std::printf("%-40s %11s %11s %11s %6s %11s %8s\n", "reader", "n", "time of n", "of 2n", "ratio",
                "memory of 2n", "of input");
    bool all_well = true;
    for (const GrowthCase &growth : GrowthCases()) {
        if (std::string_view(growth.name).find(wanted) == std::string_view::npos) continue;
        all_well = GrowsWell(growth) && all_well;
    }
    return all_well ? 0 : 1;
} catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
