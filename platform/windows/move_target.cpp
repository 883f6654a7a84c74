#include "platform/windows/move_target.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/windows/copy_tree.h"
#include "platform/windows/file_descriptor.h"
#include "platform/windows/file_names.h"
#include "platform/windows/path_resolution.h"
#include "platform/windows/rename_entry.h"
#include "platform/windows/temporary_name.h"
#include "platform/windows/tree_listing.h"

namespace {

std::string NumberedName(std::string_view name, int number, bool is_folder) {
    const size_t dot = is_folder ? std::string_view::npos : name.find_last_of('.');
    const std::string_view stem = dot == 0 ? name : name.substr(0, dot);
    return std::string(stem) + " (" + std::to_string(number) + ")" + std::string(name.substr(stem.size()));
}

bool IsUnchanged(const TreeEntry &entry) {
    struct stat now;
    if (lstat(entry.path.c_str(), &now) != 0) return false;
    if (S_ISDIR(now.st_mode))
        return S_ISDIR(entry.status.st_mode);  // a new entry keeps it from being removed
    const struct stat &then = entry.status;
    return now.st_ino == then.st_ino && now.st_size == then.st_size &&
           now.st_mtim.tv_sec == then.st_mtim.tv_sec && now.st_mtim.tv_nsec == then.st_mtim.tv_nsec;
}

// Stops at the first failure, as long as possible with everything still there.
int RemoveSource(const std::vector<TreeEntry> &entries, bool &is_whole) {
    for (size_t i = entries.size(); i-- > 0;) {
        const int error = RemoveListed({entries[i]});
        if (error != 0) return error;
        is_whole = false;
    }
    return 0;
}

// A move into a folder below the moved one, which the system cannot see where that is another file system.
bool HoldsFolder(const std::vector<TreeEntry> &entries, const std::string &folder) {
    struct stat target;
    if (stat(folder.c_str(), &target) != 0) return false;
    return std::any_of(entries.begin(), entries.end(), [&target](const TreeEntry &entry) {
        return entry.status.st_dev == target.st_dev && entry.status.st_ino == target.st_ino;
    });
}

bool AreUnchanged(const std::vector<TreeEntry> &entries) {
    return std::all_of(entries.begin(), entries.end(), IsUnchanged);
}

}  // namespace

MoveTarget::MoveTarget(std::string native_folder, bool renames)
    : folder_(std::move(native_folder)), renames_(renames) {
    const Directory directory(opendir(folder_.c_str()));
    while (const dirent *entry = directory ? readdir(directory.get()) : nullptr)
        taken_.insert(NameKey(entry->d_name));
}

std::string MoveTarget::FreeName(std::string_view name, bool is_folder) {
    std::wstring key = NameKey(name);
    if (taken_.count(key) == 0) return std::string(name);
    int &number = numbers_.try_emplace(std::move(key), 2).first->second;
    while (taken_.count(NameKey(NumberedName(name, number, is_folder))) != 0)
        ++number;
    return NumberedName(name, number, is_folder);
}

int MoveTarget::Place(const std::string &entry, std::string_view name, bool is_folder, std::string &place) {
    while (true) {
        const std::string free = FreeName(name, is_folder);
        if (free != name && !renames_) return EEXIST;
        const std::string path = folder_ + "/" + free;
        const int error = RenameWithoutReplacing(entry, path);
        if (error != 0 && error != EEXIST) return error;
        // EEXIST: something has taken the name since the folder was read.
        taken_.insert(NameKey(free));
        if (error == EEXIST) continue;
        place = path;
        return 0;
    }
}

int MoveTarget::TakeIn(const std::string &entry) {
    struct stat status;
    if (lstat(entry.c_str(), &status) != 0) return errno;
    const bool is_folder = S_ISDIR(status.st_mode);
    std::string place;
    const int error = Place(entry, FileNameOf(entry), is_folder, place);
    return error == EXDEV ? CopyIn(entry, is_folder) : error;
}

// The entry is removed only when its copy is complete, on the disk and in place.
int MoveTarget::CopyIn(const std::string &entry, bool is_folder) {
    const TreeListing source = ListTree(entry);
    if (HoldsFolder(source.entries, folder_)) return EINVAL;
    const std::string copy = TemporaryPathIn(folder_);
    std::string place = copy;
    bool source_is_whole = true;
    int error = CopyListed(source, copy);
    if (error == 0 && !AreUnchanged(source.entries)) error = EBUSY;
    if (error == 0) error = Place(copy, FileNameOf(entry), is_folder, place);
    if (error == 0) error = SyncFolder(folder_);
    if (error == 0) error = RemoveSource(source.entries, source_is_whole);
    if (error != 0 && source_is_whole) RemoveTree(place);
    return error;
}
