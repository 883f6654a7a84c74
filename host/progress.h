#ifndef HOST_PROGRESS_H
#define HOST_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/transfer_rate.h"

namespace velmarhost {

// How far a transfer has come. Bytes that are on their way again or were told wrong in advance do no harm.
struct TransferState {
    std::size_t files_done = 0;
    std::size_t files_total = 0;
    uint64_t bytes_done = 0;
    uint64_t bytes_total = 0;
    double bytes_per_second = 0;  // 0 where unknown
};

// The text of a progress line with at most so many columns.
std::string ProgressText(const TransferState &state, std::string_view file, std::size_t columns);

// One line on standard error that is drawn again and again. Without `enabled` it does nothing.
class Progress {
  public:
    Progress(bool enabled, std::size_t files_total, uint64_t bytes_total);
    ~Progress() { Clear(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void BeginFile(std::string_view name);
    void AddBytes(uint64_t count);
    // `told_bytes` is the share of the file in the total; what was read of it counts no more.
    void EndFile(uint64_t told_bytes);
    // Takes the line away, so that other lines can follow.
    void Clear();

  private:
    void Draw();

    const bool enabled_;
    bool drawn_ = false;
    TransferState state_;
    uint64_t bytes_before_file_ = 0;
    std::string file_;
    uint64_t bytes_moved_ = 0;  // whatever they counted for
    TransferRate rate_;
    std::chrono::steady_clock::time_point next_draw_;
};

}  // namespace velmarhost

#endif
