#include "host/cleanup.h"

#include <atomic>
#include <mutex>
#include <set>

namespace velmarhost {
namespace {

struct ScratchList {
    std::mutex mutex;
    std::set<std::filesystem::path> paths;
};

// Never destroyed, as the signal thread may use it while the process ends.
ScratchList &Scratch() {
    static ScratchList *list = new ScratchList;
    return *list;
}

bool signals_are_held = false;  // guarded by the list's mutex
std::atomic<int> held_signal = 0;

// Another thread may still write into the folder, so one attempt can fail.
void RemoveStubbornly(const std::filesystem::path &path) {
    constexpr int kAttempts = 20;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::error_code error;
        std::filesystem::remove_all(path, error);
        if (!error) return;
    }
}

}  // namespace

ScratchPath::ScratchPath(const std::function<std::filesystem::path()> &make) {
    const std::lock_guard lock(Scratch().mutex);
    path_ = make();
    Scratch().paths.insert(path_);
}

ScratchPath::~ScratchPath() {
    const std::lock_guard lock(Scratch().mutex);
    Scratch().paths.erase(path_);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

StopRequest::StopRequest() {
    const std::lock_guard lock(Scratch().mutex);
    held_signal = 0;
    signals_are_held = true;
}

void StopRequest::Release() {
    const std::lock_guard lock(Scratch().mutex);
    signals_are_held = false;
}

int StopRequest::signal() const {
    return held_signal;
}

bool CleanUpAtSignal(int signal) {
    std::unique_lock lock(Scratch().mutex);
    if (signals_are_held) {
        int none = 0;
        held_signal.compare_exchange_strong(none, signal);
        return false;
    }
    lock.release();  // locked for good
    for (const std::filesystem::path &path : Scratch().paths)
        RemoveStubbornly(path);
    return true;
}

}  // namespace velmarhost
