#ifndef TESTS_SUPPORT_COLLECTED_LOG_H
#define TESTS_SUPPORT_COLLECTED_LOG_H

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/velmar_path/velmar_path.h"

// Takes every line of the log for a scope.
class CollectedLog {
  public:
    CollectedLog() { SetVelmarLogHandler(&CollectedLog::Take, this); }
    ~CollectedLog() { SetVelmarLogHandler(nullptr, nullptr); }
    CollectedLog(const CollectedLog &) = delete;
    CollectedLog &operator=(const CollectedLog &) = delete;

    std::vector<std::string> Lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    // The last line, without the driver's prefix.
    std::string Last() const {
        const std::lock_guard lock(mutex_);
        if (lines_.empty()) return "";
        const std::string_view line = lines_.back();
        return std::string(line.starts_with("[iTunes] ") ? line.substr(9) : line);
    }
    bool Has(std::string_view line) const {
        const std::lock_guard lock(mutex_);
        return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
    }

  private:
    static void Take(const char *line, void *context) {
        auto *log = static_cast<CollectedLog *>(context);
        const std::lock_guard lock(log->mutex_);
        log->lines_.emplace_back(line);
    }

    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

#endif
