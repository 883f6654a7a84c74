#ifndef HOST_DRIVER_LOG_H
#define HOST_DRIVER_LOG_H

#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace velmarhost {

// Receives the driver's log for a scope. The last lines are kept for error messages; with `show` each
// line also goes to standard error as it comes. Any thread may log.
class DriverLog {
  public:
    explicit DriverLog(bool show);
    ~DriverLog();
    DriverLog(const DriverLog &) = delete;
    DriverLog &operator=(const DriverLog &) = delete;

    // Forgets the kept lines, so that LastWords tells of what follows.
    void Clear();
    // The kept lines as one; empty when nothing was logged since the last Clear.
    std::string LastWords() const;
    // What follows these words in the last kept line that has them; empty where none has.
    std::string TextBehind(std::string_view words) const;

  private:
    static void Receive(const char *line, void *log);
    void Add(std::string line);

    const bool show_;
    mutable std::mutex mutex_;
    std::deque<std::string> lines_;
};

}  // namespace velmarhost

#endif
