#ifndef LIBRARY_PREFERENCES_H
#define LIBRARY_PREFERENCES_H

#include <optional>
#include <string>

// What the preference file of iTunes says of the library; empty where it says nothing.
struct LibraryPreferences {
    std::optional<std::string> media_folder;
    std::optional<std::string> xml_path;
};

// Reads the preference file of the current user. Sets one flag byte in it, if it is there and not set, which
// rewrites the file. A file that cannot be read is logged and gives no preferences.
LibraryPreferences ReadLibraryPreferences();

#endif
