#ifndef HOST_FILE_NAMING_H
#define HOST_FILE_NAMING_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/node.h"

namespace velmarhost {

// A file name in two pieces, as cutting and numbering change the first one only.
struct FileName {
    std::string stem;
    std::string extension;  // with its dot, or empty
    std::string Whole() const { return stem + extension; }
};

// The most bytes of a name that every usual file system takes.
constexpr std::size_t kLongestFileName = 255;

// A name that every usual file system can hold and that a shell user can handle: no separator, no character
// that Windows forbids, no control character, no leading dot, no blank or dot at the end, no name of a
// Windows device, and not too long. Never empty. The extension stays only if it is a plain short one.
FileName MakeSafe(FileName name);

// ".mp3" of a path with either separator; empty when its last component has no plain short extension.
std::string ExtensionOfPath(std::string_view path);

// "Artist - Title" with the extension of the file behind the node; without a title, the name in the tree.
FileName TitleFileName(const Node &node, std::string_view tree_name);
FileName TreeFileName(std::string_view tree_name);

// The names of one folder. File systems that take no notice of letter case must be able to hold them all.
class FolderNames {
  public:
    // The safe name for a new entry: the wanted one, or that with a number behind it. The order of the calls
    // decides, and what is on the disk does not, so that the same calls give the same names again.
    std::string Take(const FileName &wanted);
    // A stem for a file whose extension is not known yet, but is one of these: its names with all of them are
    // free and are taken. `wanted` must be the stem of a safe name.
    std::string TakeStem(const std::string &wanted, std::span<const std::string_view> extensions);

  private:
    bool TakeAll(const std::string &stem, std::span<const std::string_view> extensions);

    // By the folded name: the last number that was put behind it, where 1 stands for the name alone.
    std::unordered_map<std::string, std::size_t> last_numbers_;
    std::unordered_map<std::string, std::size_t> last_stem_numbers_;  // the same for TakeStem
};

}  // namespace velmarhost

#endif
