#ifndef BENCH_MEASURE_H
#define BENCH_MEASURE_H

#include <functional>
#include <string>
#include <vector>

// What one run of some work cost.
struct Cost {
    double seconds = 0;
    double peak_bytes = 0;  // the rise of the resident peak over what was there before the work
};

// Runs the work in a child process of its own, so that neither the heap nor the peak of an earlier run
// counts. Throws std::runtime_error when the child cannot be started or does not end well.
Cost MeasureInChild(const std::function<void()> &work);

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
    Series peak_bytes;
    void Add(const Cost &cost);
};

// Prints time and peak memory of two works as ratios: "WHAT time: NAMES = ...", where the names are of the
// two, as "driver / libplist".
void PrintCosts(const std::string &what, const std::string &names, const Costs &first, const Costs &second);

#endif
