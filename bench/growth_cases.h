#ifndef BENCH_GROWTH_CASES_H
#define BENCH_GROWTH_CASES_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

// An input that was made to cost its reader as much as possible.
struct GrowthInput {
    std::uint64_t bytes = 0;
    std::function<void()> read;
};

// The worst input known for a reader, of any size.
struct GrowthCase {
    const char *name;
    std::size_t size;  // in units of its own, some MB of input or some thousand files
    // Puts an input of that size below an empty folder, which must stay until it is read.
    std::function<GrowthInput(const std::filesystem::path &folder, std::size_t size)> make;
    double memory_factor = 8;  // of the input, beside 16 MiB
};

std::vector<GrowthCase> GrowthCases();

#endif
