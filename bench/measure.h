#ifndef BENCH_MEASURE_H
#define BENCH_MEASURE_H

#include <functional>
#include <string>
#include <vector>

// Throws std::runtime_error with the text unless the condition holds.
void Require(bool condition, const char *what);

// What one run of some work cost.
struct Cost {
    double seconds = 0;
    double release_seconds = 0;
    double peak_bytes = 0;  // the rise of the resident peak over what was there before the work
    double held_bytes = 0;  // what is resident more than before, between the work and the release
};

// Runs the work, and then what releases its result, in a child process of its own, so that neither the heap
// nor the peak of an earlier run counts. Throws std::runtime_error when the child cannot be started or does
// not end well.
Cost MeasureInChild(const std::function<void()> &work, const std::function<void()> &release = {});

// Wall-clock seconds of the work in this process.
double Seconds(const std::function<void()> &work);

// Figures of the same thing, one for each round.
class Series {
  public:
    void Add(double figure) { figures_.push_back(figure); }
    double Median() const;
    // "median (min to max) unit", each figure multiplied by `scale`.
    std::string Text(double scale, const std::string &unit) const;

  private:
    std::vector<double> figures_;
};

// "1/4.2" or "1.3": the first median divided by the second.
std::string Ratio(const Series &first, const Series &second);

// What the rounds of some work cost.
struct Costs {
    Series seconds;
    Series release_seconds;
    Series peak_bytes;
    Series held_bytes;
    void Add(const Cost &cost);
};

// Prints time and peak memory of two works as ratios: "WHAT time: NAMES = ...", where the names are of the
// two, as "driver / libplist".
void PrintCosts(const std::string &what, const std::string &names, const Costs &first, const Costs &second);

#endif
