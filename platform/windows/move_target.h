#ifndef PLATFORM_WINDOWS_MOVE_TARGET_H
#define PLATFORM_WINDOWS_MOVE_TARGET_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

/* A folder that takes in entries of other folders. Two names that Windows takes for one count as a collision,
 * on every file system. */
class MoveTarget {
  public:
    // `renames` tells whether an entry whose name is taken gets a number, as in "name (2).ext".
    MoveTarget(std::string native_folder, bool renames);

    // Moves a file, link or folder in. 0 or an errno value, EEXIST for a taken name; then the entry is where
    // it was.
    int TakeIn(const std::string &entry);

  private:
    // Gives the entry a name of this folder, `place` its path there; EXDEV if it is on another file system.
    int Place(const std::string &entry, std::string_view name, bool is_folder, std::string &place);
    int CopyIn(const std::string &entry, bool is_folder);
    std::string FreeName(std::string_view name, bool is_folder);

    std::string folder_;
    bool renames_;
    std::unordered_set<std::wstring> taken_;  // keys of names
    // The number to begin with, by the key of a taken name: thousands of names may collide in one.
    std::unordered_map<std::wstring, int> numbers_;
};

#endif
