#include "host/progress.h"

#include <algorithm>
#include <cstdio>

#include "host/system.h"
#include "host/text.h"

namespace velmarhost {
namespace {

constexpr auto kDrawPeriod = std::chrono::milliseconds(100);
constexpr std::size_t kBarColumns = 20;

// Of files when no size is known.
double DoneShare(const TransferState &state) {
    const bool by_bytes = state.bytes_total > 0;
    const auto done = static_cast<double>(by_bytes ? state.bytes_done : state.files_done);
    const auto total = static_cast<double>(by_bytes ? state.bytes_total : state.files_total);
    return total > 0 ? std::min(done / total, 1.0) : 0.0;
}

std::string Bar(double share) {
    const auto filled = static_cast<std::size_t>(share * kBarColumns);
    return "[" + std::string(filled, '#') + std::string(kBarColumns - filled, ' ') + "]";
}

// "1.2 MB/s, 1:05 left", with two blanks in front; empty where there is no telling.
std::string PaceText(const TransferState &state) {
    if (state.bytes_per_second < 1) return {};
    std::string text = "  " + FormatSize(static_cast<uint64_t>(state.bytes_per_second)) + "/s";
    if (state.bytes_total > state.bytes_done) {
        const auto left = static_cast<double>(state.bytes_total - state.bytes_done);
        text += ", " + FormatDuration(left / state.bytes_per_second) + " left";
    }
    return text;
}

// Letters of East Asian scripts and pictures take two columns.
std::string CutToColumns(std::string_view text, std::size_t columns) {
    constexpr char32_t kFirstWide = 0x1100;
    std::size_t end = 0;
    std::size_t used = 0;
    while (end < text.size()) {
        const DecodedCharacter character = DecodeUtf8(text, end);
        used += character.code >= kFirstWide ? 2 : 1;
        if (used > columns) break;
        end += character.length;
    }
    return std::string(text.substr(0, end));
}

}  // namespace

std::string ProgressText(const TransferState &state, std::string_view file, std::size_t columns) {
    const double share = DoneShare(state);
    std::string text = Bar(share) + " " + std::to_string(static_cast<int>(share * 100)) + "%  " +
                       std::to_string(state.files_done) + "/" + std::to_string(state.files_total) +
                       " files  " + FormatSize(state.bytes_done);
    if (state.bytes_total > 0) text += " of " + FormatSize(state.bytes_total);
    text += PaceText(state);
    return CutToColumns(text + "  " + EscapeText(file), columns);
}

Progress::Progress(bool enabled, std::size_t files_total, uint64_t bytes_total) : enabled_(enabled) {
    state_.files_total = files_total;
    state_.bytes_total = bytes_total;
}

void Progress::BeginFile(std::string_view name) {
    file_ = name;
    bytes_before_file_ = state_.bytes_done;
    Draw();
}

void Progress::AddBytes(uint64_t count) {
    state_.bytes_done += count;
    bytes_moved_ += count;
    Draw();
}

void Progress::EndFile(uint64_t told_bytes) {
    state_.bytes_done = bytes_before_file_ + told_bytes;
    ++state_.files_done;
    Draw();
}

void Progress::Draw() {
    const auto now = std::chrono::steady_clock::now();
    if (!enabled_ || now < next_draw_) return;
    next_draw_ = now + kDrawPeriod;
    drawn_ = true;
    state_.bytes_per_second = rate_.BytesPerSecond(now, bytes_moved_);
    // The last column stays free, as some terminals begin a new line when it is filled.
    const auto columns = static_cast<std::size_t>(std::max(TerminalWidth() - 1, 1));
    std::string line = "\r";
    line += ProgressText(state_, file_, columns) + "\x1b[K";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void Progress::Clear() {
    if (!drawn_) return;
    std::fputs("\r\x1b[K", stderr);
    drawn_ = false;
}

}  // namespace velmarhost
