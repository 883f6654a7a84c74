#include <string>
#include <vector>

#include "host/commands.h"
#include "host/json_output.h"
#include "host/suggestion.h"
#include "host/tree_walk.h"

namespace velmarhost {
namespace {

// The lines that lead to an entry. `last` tells for each level whether its entry is the last of its folder.
std::string Branches(const std::vector<bool> &last) {
    std::string text;
    for (std::size_t i = 0; i + 1 < last.size(); ++i)
        text += last[i] ? "    " : "│   ";
    if (!last.empty()) text += last.back() ? "└── " : "├── ";
    return text;
}

void WriteEntry(const WalkEntry &entry, Output &output) {
    if (!entry.node) {
        output.Text(entry.name);
        output.Text("  [" + std::string(ReachWords(entry.reach)) + "]", Style::kWarning);
        return;
    }
    const bool file = entry.node->IsFile();
    output.Text(entry.path.empty() ? "/" : entry.name, file ? Style::kPlain : Style::kFolder);
    const std::string title = NodeTitle(*entry.node);
    if (!title.empty()) output.Text("  " + title, Style::kFaint);
}

void WriteTree(TreeWalk &walk, Output &output) {
    std::vector<bool> last;
    while (const WalkEntry *entry = walk.Next()) {
        last.resize(entry->depth);
        if (entry->depth > 0) last.back() = entry->last;
        output.Text(Branches(last), Style::kFaint);
        WriteEntry(*entry, output);
        output.Raw("\n");
    }
}

void WriteTreeJson(const LibrarySession &session, TreeWalk &walk, Output &output) {
    JsonEntries entries(session, output);
    while (const WalkEntry *entry = walk.Next())
        entries.Add(*entry);
    entries.End();
}

}  // namespace

ExitCode RunTree(const Options &options, LibrarySession &session, Output &output) {
    WalkLimits limits;
    limits.enter_files = options.all;
    if (options.depth) limits.max_depth = *options.depth;
    const std::string &path = options.paths.front();
    // A user who names a file wants to see what lies below it.
    if (OpenOrExplain(session, path).IsFile()) limits.enter_files = true;
    TreeWalk walk(session, path, limits);
    if (options.json) {
        WriteTreeJson(session, walk, output);
    } else {
        WriteTree(walk, output);
    }
    return ExitCode::kOk;
}

}  // namespace velmarhost
