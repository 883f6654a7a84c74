#include "host/get_plan.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "host/file_naming.h"
#include "host/modified_time.h"
#include "host/suggestion.h"
#include "host/thumbnail.h"

namespace velmarhost {
namespace {

std::optional<uint64_t> KnownSize(const Node &node) {
    const std::optional<int64_t> size = node.NumberAttribute("st_size");
    if (!size || *size <= 0) return std::nullopt;
    return static_cast<uint64_t>(*size);
}

class Planner {
  public:
    Planner(const LibrarySession &session, const Options &options) : session_(session), options_(options) {
        AddFolder(options.target);
    }

    void AddSubtree(const std::string &path) {
        TreeWalk walk(session_, path);
        // The planned folder of each level on the way to the current entry; below the target stands what the
        // walk begins with, unless that is the root of the tree, which has no name.
        std::vector<std::size_t> way = {0};
        while (const WalkEntry *entry = walk.Next()) {
            way.resize(std::min(way.size(), entry->depth + 1));
            if (!entry->node) {
                plan_.passed_over.push_back({entry->path, entry->reach});
            } else if (entry->node->IsFile()) {
                AddFile(*entry, way.back());
            } else {
                way.push_back(entry->path.empty() ? 0 : AddFolderFor(*entry, way.back()));
            }
        }
    }

    GetPlan Finish() {
        for (const PlannedCover &cover : covers_) {
            PlannedFile &file = plan_.files[cover.file];
            file.cover = states_[file.folder].names.TakeStem(cover.stem, kCoverExtensions);
        }
        return std::move(plan_);
    }

  private:
    // What is known of a planned folder besides its path.
    struct FolderState {
        FolderNames names;
        std::unordered_set<const void *> sources;  // of its files
    };

    // A cover whose name waits until all files have theirs.
    struct PlannedCover {
        std::size_t file;  // index in the plan's files
        std::string stem;
    };

    std::size_t AddFolder(const std::filesystem::path &path) {
        plan_.folders.push_back(path);
        states_.emplace_back();
        return states_.size() - 1;
    }

    std::size_t AddFolderFor(const WalkEntry &entry, std::size_t parent) {
        // A folder's name has no extension: what stands behind its last dot is a part of the name.
        const std::string name = states_[parent].names.Take({std::string(entry.name), {}});
        return AddFolder(plan_.folders[parent] / name);
    }

    void AddFile(const WalkEntry &entry, std::size_t folder) {
        const Node &node = *entry.node;
        if (!states_[folder].sources.insert(node.identity()).second) return;
        const bool by_title = options_.names == FileNames::kTitle;
        const FileName wanted = by_title ? TitleFileName(node, entry.name) : TreeFileName(entry.name);
        const FileName safe = MakeSafe(wanted);
        const std::string name = states_[folder].names.Take(safe);
        if (options_.with_artwork && HasThumbnail(node)) {
            covers_.push_back({plan_.files.size(), name.substr(0, name.size() - safe.extension.size())});
        }
        PlannedFile file{entry.path,        folder, name, {}, session_.Location(node), KnownSize(node),
                         ModifiedTime(node)};
        plan_.total_bytes += file.size.value_or(0);
        plan_.files.push_back(std::move(file));
    }

    const LibrarySession &session_;
    const Options &options_;
    GetPlan plan_;
    std::vector<FolderState> states_;  // parallel to the plan's folders
    std::vector<PlannedCover> covers_;
};

}  // namespace

GetPlan PlanGet(const LibrarySession &session, const Options &options) {
    for (const std::string &path : options.paths)
        OpenOrExplain(session, path);
    Planner planner(session, options);
    std::unordered_set<std::string_view> done;
    for (const std::string &path : options.paths) {
        if (done.insert(path).second) planner.AddSubtree(path);
    }
    return planner.Finish();
}

}  // namespace velmarhost
