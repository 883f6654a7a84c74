#ifndef DRIVER_LIMIT_LOG_H
#define DRIVER_LIMIT_LOG_H

#include <string>
#include <string_view>

#include "platform/limits.h"

// Stands where a file is read: if this thread hits a limit meanwhile, the end of the scope writes one line
// with the limit and the path to the log. What is hit inside an inner scope is that one's to tell.
class LimitLog {
  public:
    explicit LimitLog(std::string_view path) : path_(path), outer_(TakeHitLimit()) {}
    ~LimitLog();
    LimitLog(const LimitLog &) = delete;
    LimitLog &operator=(const LimitLog &) = delete;

  private:
    std::string path_;
    Limit outer_;
};

#endif
