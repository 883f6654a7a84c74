#ifndef TESTS_CONTENT_CAPTURED_LOG_H
#define TESTS_CONTENT_CAPTURED_LOG_H

#include <string>
#include <vector>

#include "platform/velmar_path/velmar_path.h"

// The lines that reach the host's log during a scope.
class CapturedLog {
  public:
    CapturedLog() { SetVelmarLogHandler(Append, &lines_); }
    ~CapturedLog() { SetVelmarLogHandler(nullptr, nullptr); }
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;

    const std::vector<std::string> &lines() const { return lines_; }

  private:
    static void Append(const char *line, void *context) {
        static_cast<std::vector<std::string> *>(context)->emplace_back(line);
    }

    std::vector<std::string> lines_;
};

#endif
