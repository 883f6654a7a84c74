#include "host/add_plan.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "host/added_kinds.h"
#include "host/file_naming.h"
#include "host/text.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

constexpr const char *kOtherKind = "of a kind that iTunes does not take";

bool IsBookFolder(const fs::path &folder) {
    return FoldCase(ExtensionOfPath(folder.filename().string())) == ".epub";
}

bool IsHidden(const fs::path &path) {
    return path.filename().string().starts_with('.');
}

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const DecodedCharacter character = DecodeUtf8(text, i);
        if (character.code == kBadByte) return false;
        i += character.length;
    }
    return true;
}

std::vector<fs::path> SortedEntries(const fs::path &folder, std::error_code &error) {
    std::vector<fs::path> entries;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error))
        entries.push_back(i->path());
    std::sort(entries.begin(), entries.end());
    return entries;
}

class Planner {
  public:
    explicit Planner(const Options &options) : options_(options) {}

    void AddNamed(const std::string &named) {
        std::error_code error;
        const fs::file_status status = fs::status(named, error);
        if (named == "-") {
            AddCopy({.shown = named, .name = options_.add_name});
        } else if (fs::is_directory(status)) {
            WalkFrom(named);
        } else {
            AddFile(named);
        }
    }

    AddPlan Finish() { return std::move(plan_); }

  private:
    void WalkFrom(const fs::path &start) {
        std::vector<fs::path> waiting = {start};  // the next one last
        while (!waiting.empty()) {
            const fs::path path = std::move(waiting.back());
            waiting.pop_back();
            std::error_code ignored;
            if (fs::is_directory(path, ignored)) {
                OpenFolder(path, waiting);
            } else if (!TreePathOfKind(path.filename().string())) {
                PassOver(kOtherKind, path);
            } else {
                AddFile(path);
            }
        }
    }

    void OpenFolder(const fs::path &folder, std::vector<fs::path> &waiting) {
        if (IsBookFolder(folder)) {
            return AddProblem(
                folder, "is a book in form of a folder. Pack it into one file, a zip archive named .epub");
        }
        std::error_code error;
        const fs::path real = fs::canonical(folder, error);
        if (!error && !seen_.insert(real.string()).second) return PassOver("there twice", folder);
        std::vector<fs::path> entries = SortedEntries(folder, error);
        if (error) AddProblem(folder, "cannot be listed: " + error.message());
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (IsHidden(*entry)) {
                PassOver("hidden", *entry);
            } else {
                waiting.push_back(std::move(*entry));
            }
        }
    }

    void AddFile(const fs::path &path) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status)) return AddProblem(path, error ? error.message() : "no such file");
        if (!fs::is_regular_file(status)) {
            return AddProblem(path,
                              "is no regular file. Its bytes can come as standard input: - and --name NAME");
        }
        const uint64_t bytes = fs::file_size(path, error);
        if (error) return AddProblem(path, error.message());
        if (bytes == 0) return AddProblem(path, "is empty");
        const std::string own_name = path.filename().string();
        const std::string &name = options_.add_name.empty() ? own_name : options_.add_name;
        if (!TreePathOfKind(name)) return AddProblem(path, std::string("is ") + kOtherKind);
        const fs::path real = fs::canonical(path, error);
        if (!error && !seen_.insert(real.string()).second) return PassOver("there twice", path);
        AddCopy({.shown = path.string(), .file = fs::absolute(path), .name = name, .bytes = bytes});
    }

    // Completes a copy, whose name is the wanted one still.
    void AddCopy(PlannedCopy copy) {
        const std::string file = copy.file.string();
        copy.tree_path = options_.add_to.empty() ? std::string(TreePathOfKind(copy.name).value_or("library"))
                                                 : options_.add_to;
        copy.name = MakeSafe(TreeFileName(copy.name)).Whole();
        // The driver takes a backslash for a separator, and its paths are text.
        copy.through_host = copy.name != copy.file.filename().string() ||
                            file.find('\\') != std::string::npos || !IsUtf8(file);
        plan_.total_bytes += copy.bytes;
        plan_.copies.push_back(std::move(copy));
    }

    void AddProblem(const fs::path &path, std::string problem) {
        plan_.copies.push_back({.shown = path.string(), .problem = std::move(problem)});
    }

    void PassOver(const std::string &reason, const fs::path &path) {
        plan_.passed_over[reason].push_back(path.string());
    }

    const Options &options_;
    AddPlan plan_;
    std::unordered_set<std::string> seen_;  // the real paths of folders and files
};

}  // namespace

AddPlan PlanAdd(const Options &options) {
    Planner planner(options);
    for (const std::string &named : options.paths)
        planner.AddNamed(named);
    return planner.Finish();
}

}  // namespace velmarhost
