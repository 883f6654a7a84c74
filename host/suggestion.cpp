#include "host/suggestion.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "host/text.h"

namespace velmarhost {
namespace {

// Names longer than this are not what a user mistypes, and the comparison costs the product of both lengths.
constexpr std::size_t kLongestName = 100;

// Letters to insert, remove or change, in bytes.
std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t k = 0; k < b.size(); ++k) {
            const std::size_t changed = diagonal + (a[i] == b[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({changed, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

std::vector<std::string_view> ReachableNames(const Node &node) {
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < node.ChildCount(); ++i) {
        const std::string_view name = node.ChildName(i);
        if (!name.empty() && name.find('/') == std::string_view::npos) names.push_back(name);
    }
    return names;
}

std::string Join(const std::string &folder, const std::string &name) {
    return folder.empty() ? name : folder + "/" + name;
}

// The deepest node on the way to a path, and the first name on that way that is not there.
struct WayEnd {
    std::string folder;
    std::string missing;
};

WayEnd FollowPath(const LibrarySession &session, const std::string &path) {
    std::string folder = path;
    std::string missing;
    do {
        const std::size_t slash = folder.rfind('/');
        missing = slash == std::string::npos ? folder : folder.substr(slash + 1);
        folder = slash == std::string::npos ? std::string() : folder.substr(0, slash);
    } while (!folder.empty() && !session.Open(folder));
    return {folder, missing};
}

}  // namespace

std::optional<std::string> ClosestName(std::string_view wanted,
                                       const std::vector<std::string_view> &candidates) {
    const std::string folded = FoldCase(wanted);
    std::size_t best_distance = std::max<std::size_t>(1, folded.size() / 3) + 1;
    std::optional<std::string> best;
    for (const std::string_view candidate : candidates) {
        if (candidate.size() > kLongestName || folded.size() > kLongestName) continue;
        const std::size_t distance = EditDistance(folded, FoldCase(candidate));
        if (distance >= best_distance) continue;
        best_distance = distance;
        best = candidate;
    }
    return best;
}

HostError NoSuchPath(const LibrarySession &session, const std::string &path) {
    const WayEnd end = FollowPath(session, path);
    std::string text = "no such path in the library: \"" + path + "\".";
    if (const std::optional<Node> folder = session.Open(end.folder)) {
        const std::optional<std::string> name = ClosestName(end.missing, ReachableNames(*folder));
        if (name) text += " Did you mean \"" + Join(end.folder, *name) + "\"?";
    }
    text += " See: velmarhost ls";
    if (!end.folder.empty()) text += " \"" + end.folder + "\"";
    return {ExitCode::kNoPath, text};
}

Node OpenOrExplain(const LibrarySession &session, const std::string &path) {
    std::optional<Node> node = session.Open(path);
    if (!node) throw NoSuchPath(session, path);
    return std::move(*node);
}

}  // namespace velmarhost
