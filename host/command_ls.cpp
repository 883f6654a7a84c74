#include <algorithm>
#include <array>
#include <ctime>
#include <string>

#include "host/commands.h"
#include "host/json_output.h"
#include "host/modified_time.h"
#include "host/node_words.h"
#include "host/suggestion.h"
#include "host/text.h"
#include "host/thumbnail.h"
#include "host/tree_walk.h"

namespace velmarhost {
namespace {

constexpr std::size_t kTypeColumn = 15;
constexpr std::size_t kSizeColumn = 12;

std::string PadRight(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string PadLeft(const std::string &text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string SizeText(const Node &node, bool human) {
    const std::optional<int64_t> size = node.NumberAttribute("st_size");
    if (!size || *size < 0) return "-";
    return human ? FormatSize(static_cast<uint64_t>(*size)) : std::to_string(*size);
}

// In local time, which gives the date and hour that stand in the library: the driver's number takes them for
// local.
std::string DateText(const Node &node) {
    constexpr const char *kNone = "-               ";
    const std::optional<int64_t> seconds = ModifiedTime(node);
    if (!seconds) return kNone;
    const auto time = static_cast<std::time_t>(*seconds);
    const std::tm *local = std::localtime(&time);
    std::array<char, 32> buffer{};
    if (local == nullptr || std::strftime(buffer.data(), buffer.size(), "%Y-%m-%d %H:%M", local) == 0)
        return kNone;
    return buffer.data();
}

void WriteColumns(const WalkEntry &entry, const Options &options, Output &output) {
    const bool reached = entry.node.has_value();
    output.Text(PadRight(std::string(reached ? TypeWord(*entry.node) : "unreachable"), kTypeColumn));
    output.Text(" " + PadLeft(reached ? SizeText(*entry.node, options.human_sizes) : "-", kSizeColumn));
    output.Text("  " + (reached ? DateText(*entry.node) : PadRight("-", 16)) + "  ");
    output.Raw(reached && HasThumbnail(*entry.node) ? "*  " : "   ");
}

void WriteEntry(const WalkEntry &entry, const Options &options, Output &output) {
    if (options.long_list) WriteColumns(entry, options, output);
    if (!entry.node) {
        output.Text(entry.name);
        output.Text("  [" + std::string(ReachWords(entry.reach)) + "]", Style::kWarning);
    } else {
        const bool file = entry.node->IsFile();
        output.Text(entry.name, file ? Style::kPlain : Style::kFolder);
        if (!file) output.Raw("/");
        const std::string title = options.long_list ? NodeTitle(*entry.node) : std::string();
        if (!title.empty()) output.Text("  " + title, Style::kFaint);
    }
    output.Raw("\n");
}

}  // namespace

ExitCode RunLs(const Options &options, LibrarySession &session, Output &output) {
    const std::string &path = options.paths.front();
    OpenOrExplain(session, path);
    TreeWalk walk(session, path, {.max_depth = 1, .enter_files = true});
    JsonEntries entries(session, output);
    walk.Next();  // the node itself
    // A track tells of its picture only after a walk into some file, and each entry is such a walk itself.
    while (const WalkEntry *entry = walk.Next()) {
        if (options.json) {
            entries.Add(*entry);
        } else {
            WriteEntry(*entry, options, output);
        }
    }
    if (options.json) entries.End();
    return ExitCode::kOk;
}

}  // namespace velmarhost
