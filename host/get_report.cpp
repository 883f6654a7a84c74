#include "host/get_report.h"

#include <algorithm>

#include "host/text.h"

namespace velmarhost {
namespace {

constexpr std::size_t kExamples = 3;
constexpr std::string_view kSeparators = "/\\";

std::string_view FolderOf(std::string_view location) {
    const std::size_t separator = location.find_last_of(kSeparators);
    return location.substr(0, separator == std::string_view::npos ? 0 : separator);
}

std::string FirstComponent(std::string_view location) {
    const std::size_t begin = std::min(location.find_first_not_of(kSeparators), location.size());
    return std::string(location.substr(0, location.find_first_of(kSeparators, begin)));
}

void AppendPaths(const std::vector<std::string> &paths, bool all_paths, std::vector<std::string> &lines) {
    const std::size_t shown = all_paths ? paths.size() : std::min(paths.size(), kExamples);
    for (std::size_t i = 0; i < shown; ++i)
        lines.push_back("    " + paths[i]);
    if (shown < paths.size())
        lines.push_back("    ... and " + std::to_string(paths.size() - shown) + " more (-v)");
}

}  // namespace

std::string CommonFolder(std::string_view a, std::string_view b) {
    const auto limit = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
    const auto *const end = std::mismatch(a.begin(), a.begin() + limit, b.begin()).first;
    auto length = static_cast<std::size_t>(end - a.begin());
    // A match that ends within a component ends in front of it.
    const bool whole = (length == a.size() || kSeparators.find(a[length]) != std::string_view::npos) &&
                       (length == b.size() || kSeparators.find(b[length]) != std::string_view::npos);
    if (!whole) length = FolderOf(a.substr(0, length)).size();
    return std::string(a.substr(0, length));
}

void GetReport::AddGot(uint64_t bytes) {
    ++got_;
    bytes_ += bytes;
}

void GetReport::AddNotFound(const std::string &path, const std::string &location) {
    Group &group = lost_[FirstComponent(location)];
    const std::string_view folder = FolderOf(location);
    group.common_folder =
        group.paths.empty() ? std::string(folder) : CommonFolder(group.common_folder, folder);
    group.paths.push_back(path);
}

void GetReport::AddProblem(const std::string &reason, const std::string &path) {
    problems_[reason].paths.push_back(path);
}

void GetReport::AppendCovers(bool all, std::vector<std::string> &lines) const {
    if (covers_got_ + covers_already_there_ + covers_lost_.size() == 0) return;
    lines.push_back("got " + FormatCount(covers_got_, "cover", "covers") + ", " +
                    std::to_string(covers_already_there_) + " already there, " +
                    std::to_string(covers_lost_.size()) + " could not be read");
    AppendPaths(covers_lost_, all, lines);
}

std::vector<std::string> GetReport::Lines(bool all_paths) const {
    std::vector<std::string> lines = {"got " + FormatCount(got_, "file", "files") + " (" +
                                      FormatSize(bytes_) + "), " + std::to_string(already_there_) +
                                      " already there"};
    AppendCovers(all_paths, lines);
    for (const auto &[reason, group] : problems_) {
        lines.push_back("  " + FormatCount(group.paths.size(), "entry", "entries") + ": " + reason);
        AppendPaths(group.paths, all_paths, lines);
    }
    for (const auto &[first, group] : lost_) {
        lines.push_back("  " + FormatCount(group.paths.size(), "file", "files") + " not found under \"" +
                        group.common_folder + "\"");
        AppendPaths(group.paths, all_paths, lines);
    }
    if (!lost_.empty()) {
        lines.emplace_back(
            "If these files are in another place now, name it: --drive C:=DIR for a whole drive, or "
            "--library FILE --media DIR for the media folder.");
    }
    return lines;
}

}  // namespace velmarhost
