#include "host/driver_log.h"

#include <algorithm>
#include <utility>

#include "host/output.h"
#include "host/text.h"
#include "platform/velmar_path/velmar_path.h"

namespace velmarhost {
namespace {

// A failed start ends with a line for each level that gave up; the first of them is the cause.
constexpr std::size_t kLastLines = 3;
// All that a failed start says.
constexpr std::size_t kKeptLines = 8;

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
    for (std::size_t i = lines_.size() - std::min(lines_.size(), kLastLines); i < lines_.size(); ++i)
        words += (words.empty() ? "" : "; ") + lines_[i];
    return words;
}

std::string DriverLog::TextBehind(std::string_view words) const {
    const std::lock_guard lock(mutex_);
    for (auto line = lines_.rbegin(); line != lines_.rend(); ++line) {
        const std::size_t begin = line->find(words);
        if (begin != std::string::npos) return line->substr(begin + words.size());
    }
    return {};
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
