#ifndef HOST_LIBRARY_FILE_H
#define HOST_LIBRARY_FILE_H

#include <filesystem>

namespace velmarhost {

enum class LibraryFormat {
    kXml,         // a property list in XML of an 8-bit character set
    kOtherPlist,  // a binary property list, or XML of 16-bit units
    kItl,         // "iTunes Library.itl"
};

// Looks at the first bytes of a file that the user names as a library. Throws HostError with code kLibrary,
// and words on what to do, for a file that is not there or no library by its start.
LibraryFormat ExamineLibraryFile(const std::filesystem::path &file);

}  // namespace velmarhost

#endif
