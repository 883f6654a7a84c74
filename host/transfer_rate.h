#ifndef HOST_TRANSFER_RATE_H
#define HOST_TRANSFER_RATE_H

#include <chrono>
#include <cstdint>
#include <deque>

namespace velmarhost {

// How fast bytes move, over the last few seconds: a stall or a faster disk shows soon, single pieces do not.
class TransferRate {
  public:
    using Time = std::chrono::steady_clock::time_point;

    // Takes down how many bytes have moved until `now` and gives the rate; 0 while too little is known.
    double BytesPerSecond(Time now, uint64_t bytes_moved);

  private:
    struct Sample {
        Time time;
        uint64_t bytes_moved;
    };
    std::deque<Sample> samples_;
};

}  // namespace velmarhost

#endif
