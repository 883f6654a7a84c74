#include "host/output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "host/host_error.h"
#include "host/system.h"
#include "host/text.h"

namespace velmarhost {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;

std::string_view EscapeSequence(Style style) {
    switch (style) {
        case Style::kFolder:
            return "\x1b[1;34m";
        case Style::kFaint:
            return "\x1b[2m";
        case Style::kWarning:
            return "\x1b[33m";
        case Style::kPlain:
            break;
    }
    return {};
}

bool IsDumbTerminal() {
    const char *term = std::getenv("TERM");
    return term == nullptr || std::strcmp(term, "dumb") == 0 || *term == '\0';
}

void WriteBytes(std::string_view bytes) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0)
        return;
    if (errno == EPIPE) throw OutputClosed();
    throw HostError(ExitCode::kIncomplete, std::string("standard output: ") + std::strerror(errno));
}

}  // namespace

void Output::Raw(std::string_view bytes) {
    buffer_ += bytes;
    if (buffer_.size() >= kBufferBytes) Flush();
}

void Output::Text(std::string_view text, Style style) {
    const std::string_view sequence = color_ && !text.empty() ? EscapeSequence(style) : std::string_view();
    Raw(sequence);
    Raw(EscapeText(text));
    if (!sequence.empty()) Raw("\x1b[0m");
}

void Output::Flush() {
    const std::string bytes = std::exchange(buffer_, {});
    if (!bytes.empty()) WriteBytes(bytes);
}

bool WantsColor(ColorChoice choice) {
    if (choice != ColorChoice::kAuto) return choice == ColorChoice::kAlways;
    const char *no_color = std::getenv("NO_COLOR");
    const bool refused = no_color != nullptr && *no_color != '\0';
    return !refused && !IsDumbTerminal() && IsTerminal(Stream::kOutput);
}

bool WantsProgress() {
    return !IsDumbTerminal() && IsTerminal(Stream::kError);
}

void PrintMessage(std::string_view text) {
    const std::string line = EscapeText(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace velmarhost
