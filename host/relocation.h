#ifndef HOST_RELOCATION_H
#define HOST_RELOCATION_H

#include <iosfwd>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace velmarhost {

// Where the media of a library have moved.
struct Relocation {
    std::string old_folder;  // as DecodeFileUrl gives it, without a slash at the end
    std::string new_folder;  // absolute, without a slash at the end
    // Entries of the old folder that are found in another new one.
    std::set<std::string> exceptions;
    std::string exception_folder;
};

// The media folder that a library XML names; empty when it names none. Reads from the start, and no further
// than to the name.
std::optional<std::string> FindMusicFolder(std::istream &library);

// The new text of a location, given as it stands between its tags; empty when it lies outside the old folder.
std::optional<std::string> RelocateLocation(const Relocation &relocation, std::string_view xml_text);

// Copies a library XML with every location relocated and all else byte for byte. Holds no more than one value
// of the file in memory. Gives the number of locations that were changed; the streams tell of failures.
std::size_t CopyRelocated(const Relocation &relocation, std::istream &library, std::ostream &copy);

}  // namespace velmarhost

#endif
