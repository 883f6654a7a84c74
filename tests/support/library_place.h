#ifndef TESTS_SUPPORT_LIBRARY_PLACE_H
#define TESTS_SUPPORT_LIBRARY_PLACE_H

#include <filesystem>
#include <string>

#include "tests/support/scoped_environment.h"

// How paths stand in the preferences and in the locations of a library.
enum class PathStyle {
    kNative,   // absolute paths of this system
    kWindows,  // paths on a drive C:, which is the home folder of the place
};

// Where a user of the driver keeps a library: a home folder of its own with preferences, a media folder with
// the folder "Automatically Add to iTunes", and a folder for temporary files.
struct LibraryPlace {
    std::filesystem::path home;
    PathStyle style = PathStyle::kNative;
    std::filesystem::path library_xml;
    std::filesystem::path media_folder;
    std::filesystem::path add_folder;
    // What to set so that the driver finds this library, and nothing of the user who runs the test.
    EnvironmentValues environment;

    // A file below `home` as a library's "Location".
    std::string Location(const std::filesystem::path &file) const;
};

// Makes the folders and the preference file below `folder`, which must be absolute. The library XML is the
// caller's to write: at `library_xml`, by default the usual place in the music folder. In Windows style it
// must lie below the home folder.
LibraryPlace MakeLibraryPlace(const std::filesystem::path &folder, PathStyle style = PathStyle::kNative,
                              const std::filesystem::path &library_xml = {});

#endif
