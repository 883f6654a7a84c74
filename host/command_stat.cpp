#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "host/commands.h"
#include "host/json_output.h"
#include "host/node_words.h"
#include "host/suggestion.h"
#include "host/tree_walk.h"

namespace velmarhost {
namespace {

void WriteLine(std::string_view label, std::string_view value, Output &output) {
    constexpr std::size_t kLabelColumn = 20;
    output.Text(label, Style::kFaint);
    output.Raw(std::string(kLabelColumn - std::min(kLabelColumn - 1, label.size()), ' '));
    output.Text(value);
    output.Raw("\n");
}

std::string WithWord(int32_t number, std::string_view word) {
    return std::to_string(number) + " (" + std::string(word) + ")";
}

void WriteNode(const LibrarySession &session, const std::string &path, const Node &node, Output &output) {
    WriteLine("path", path.empty() ? "/" : path, output);
    WriteLine("kind", WithWord(node.kind(), KindWord(node.kind())), output);
    WriteLine("category", WithWord(node.category(), CategoryWord(node.category())), output);
    WriteLine("subcategory",
              WithWord(node.subcategory(), SubcategoryWord(node.category(), node.subcategory())), output);
    output.Raw("\nattributes\n");
    for (const auto &[key, value] : session.Attributes(node))
        WriteLine("  " + key, value, output);
    output.Raw("\nnames (" + std::to_string(node.ChildCount()) + ")\n");
    for (std::size_t i = 0; i < node.ChildCount(); ++i) {
        output.Raw("  ");
        output.Text(node.ChildName(i));
        output.Raw("\n");
    }
}

}  // namespace

ExitCode RunStat(const Options &options, LibrarySession &session, Output &output) {
    const std::string &path = options.paths.front();
    Node node = OpenOrExplain(session, path);
    if (options.json) {
        const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
        WriteJsonNode(session, {path, name, 0, true, Reach::kReached, std::move(node)}, output);
    } else {
        WriteNode(session, path, node, output);
    }
    return ExitCode::kOk;
}

}  // namespace velmarhost
