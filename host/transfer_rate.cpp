#include "host/transfer_rate.h"

namespace velmarhost {
namespace {

constexpr auto kWindow = std::chrono::seconds(5);
// The first moments, with their opening of files and empty caches, tell nothing yet.
constexpr auto kShortest = std::chrono::milliseconds(500);

}  // namespace

double TransferRate::BytesPerSecond(Time now, uint64_t bytes_moved) {
    samples_.push_back({now, bytes_moved});
    // One sample stays that lies at or before the start of the window.
    while (samples_.size() > 1 && now - samples_[1].time >= kWindow)
        samples_.pop_front();
    const auto passed = now - samples_.front().time;
    if (passed < kShortest) return 0;
    return static_cast<double>(bytes_moved - samples_.front().bytes_moved) /
           std::chrono::duration<double>(passed).count();
}

}  // namespace velmarhost
