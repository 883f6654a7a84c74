#include "bench/measure.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

double PeakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

double ResidentBytes() {
    double total_pages = 0;
    double resident_pages = 0;
    std::ifstream("/proc/self/statm") >> total_pages >> resident_pages;
    return resident_pages * static_cast<double>(sysconf(_SC_PAGESIZE));
}

Cost Measure(const std::function<void()> &work, const std::function<void()> &release) {
    const double peak_before = PeakBytes();
    const double held_before = ResidentBytes();
    Cost cost;
    cost.seconds = Seconds(work);
    cost.peak_bytes = PeakBytes() - peak_before;
    cost.held_bytes = ResidentBytes() - held_before;
    if (release) cost.release_seconds = Seconds(release);
    return cost;
}

// The child's end: measures, reports through the pipe, and leaves without running the parent's destructors.
[[noreturn]] void RunChild(int report, const std::function<void()> &work,
                           const std::function<void()> &release) {
    int status = 1;
    try {
        const Cost cost = Measure(work, release);
        if (write(report, &cost, sizeof cost) == static_cast<ssize_t>(sizeof cost)) status = 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(status);
}

}  // namespace

void Require(bool condition, const char *what) {
    if (!condition) throw std::runtime_error(what);
}

double Seconds(const std::function<void()> &work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Cost MeasureInChild(const std::function<void()> &work, const std::function<void()> &release) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) RunChild(ends[1], work, release);
    close(ends[1]);
    Cost cost;
    const ssize_t count = child < 0 ? -1 : read(ends[0], &cost, sizeof cost);
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    if (count != static_cast<ssize_t>(sizeof cost)) throw std::runtime_error("the measured process failed");
    return cost;
}

double Series::Median() const {
    std::vector<double> sorted = figures_;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

std::string Series::Text(double scale, const std::string &unit) const {
    const auto [low, high] = std::minmax_element(figures_.begin(), figures_.end());
    char text[120];
    std::snprintf(text, sizeof text, "%.4g (%.4g to %.4g) %s", Median() * scale, *low * scale, *high * scale,
                  unit.c_str());
    return text;
}

std::string Ratio(const Series &first, const Series &second) {
    const double ratio = first.Median() / second.Median();
    char text[40];
    std::snprintf(text, sizeof text, ratio < 1 ? "1/%.2f" : "%.2f", ratio < 1 ? 1 / ratio : ratio);
    return text;
}

void Costs::Add(const Cost &cost) {
    seconds.Add(cost.seconds);
    release_seconds.Add(cost.release_seconds);
    peak_bytes.Add(cost.peak_bytes);
    held_bytes.Add(cost.held_bytes);
}

void PrintCosts(const std::string &what, const std::string &names, const Costs &first, const Costs &second) {
    constexpr double kMegabyte = 1.0 / (1 << 20);
    const auto print = [&](const char *quantity, const Series &one, const Series &other, double scale,
                           const char *unit) {
        std::cout << what << quantity << names << " = " << Ratio(one, other) << "   " << one.Text(scale, unit)
                  << " / " << other.Text(scale, unit) << "\n";
    };
    print(" time: ", first.seconds, second.seconds, 1, "s");
    print(" peak memory: ", first.peak_bytes, second.peak_bytes, kMegabyte, "MiB");
}
