#include "host/driver_log.h"

#include <utility>

#include "host/output.h"
#include "host/text.h"
#include "platform/velmar_path/velmar_path.h"

namespace velmarhost {
namespace {

// A failed start ends with a line for each level that gave up; the first of them is the cause.
constexpr std::size_t kKeptLines = 3;

}  // namespace

DriverLog::DriverLog(bool show) : show_(show) {
    SetVelmarLogHandler(&DriverLog::Receive, this);
}

DriverLog::~DriverLog() {
    SetVelmarLogHandler(nullptr, nullptr);
}

void DriverLog::Clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
}

std::string DriverLog::LastWords() const {
    const std::lock_guard lock(mutex_);
    std::string words;
    for (const std::string &line : lines_)
        words += (words.empty() ? "" : "; ") + line;
    return words;
}

void DriverLog::Receive(const char *line, void *log) {
    static_cast<DriverLog *>(log)->Add(std::string(StripCharacters(line, "\r\n")));
}

void DriverLog::Add(std::string line) {
    const std::lock_guard lock(mutex_);
    if (show_) PrintMessage(line);
    lines_.push_back(std::move(line));
    if (lines_.size() > kKeptLines) lines_.pop_front();
}

}  // namespace velmarhost
