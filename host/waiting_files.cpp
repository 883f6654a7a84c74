#include "host/waiting_files.h"

#include <string_view>
#include <unordered_set>

#include "host/file_naming.h"
#include "host/text.h"

namespace velmarhost {
namespace {

constexpr std::string_view kSeparators = "/\\";
constexpr int32_t kAudio = 2;
constexpr int32_t kVideo = 3;
constexpr int32_t kBook = 5;
constexpr int32_t kApplication = 6;

// Sound and film files of folder scans are named by a number from here on.
constexpr int64_t kFirstScannedId = 5'000'000;

bool MayBeScannedSound(std::string_view name) {
    return ParseNumber(name.substr(0, name.find('.'))).value_or(0) >= kFirstScannedId;
}

// By the driver's own rule: the name differs by language, but the program's name is always in it.
bool IsAddFolder(std::string_view folder) {
    constexpr std::size_t kShortestName = 12;
    return folder.find("iTunes") != std::string_view::npos && CountCharacters(folder) >= kShortestName;
}

// The file name of a location in the add folder; empty for one elsewhere.
std::string_view NameInAddFolder(std::string_view location) {
    const std::size_t name = location.find_last_of(kSeparators);
    if (name == std::string_view::npos) return {};
    const std::string_view folder = location.substr(0, name);
    const std::size_t parent = folder.find_last_of(kSeparators);
    if (!IsAddFolder(parent == std::string_view::npos ? folder : folder.substr(parent + 1))) return {};
    return location.substr(name + 1);
}

void AppendEntry(const LibrarySession &session, const std::string &path, std::vector<WaitingFile> &files) {
    const std::optional<Node> node = session.Open(path);
    if (!node || !node->IsFile()) return;
    const std::string_view name = NameInAddFolder(node->Attribute("location"));
    if (name.empty()) return;
    files.push_back({std::string(name), node->NumberAttribute("st_size"), path, session.Location(*node)});
}

// Books and applications have their file names in the tree, which two of them may share.
void AppendNamed(const LibrarySession &session, const Node &root, const std::string &root_path,
                 std::vector<WaitingFile> &files) {
    std::unordered_set<std::string_view> names;
    for (std::size_t i = 0; i < root.ChildCount(); ++i) {
        const std::string_view name = root.ChildName(i);
        if (names.insert(name).second) {
            AppendEntry(session, root_path + "/" + std::string(name), files);
        } else {
            files.push_back({std::string(name), std::nullopt, {}, {}});
        }
    }
}

void AppendNumbered(const LibrarySession &session, const Node &root, const std::string &root_path,
                    std::vector<WaitingFile> &files) {
    for (std::size_t i = 0; i < root.ChildCount(); ++i) {
        const std::string_view name = root.ChildName(i);
        if (MayBeScannedSound(name)) AppendEntry(session, root_path + "/" + std::string(name), files);
    }
}

}  // namespace

std::vector<WaitingFile> ListWaitingFiles(const LibrarySession &session) {
    constexpr const char *kLibrary = "library";
    std::vector<WaitingFile> files;
    const std::optional<Node> library = session.Open(kLibrary);
    if (!library) return files;
    for (std::size_t i = 0; i < library->ChildCount(); ++i) {
        const std::string path = std::string(kLibrary) + "/" + std::string(library->ChildName(i));
        const std::optional<Node> root = session.Open(path);
        if (!root || root->kind() != kFolderKind) continue;
        if (root->category() == kAudio || root->category() == kVideo)
            AppendNumbered(session, *root, path, files);
        if (root->category() == kBook || root->category() == kApplication)
            AppendNamed(session, *root, path, files);
    }
    return files;
}

}  // namespace velmarhost
