#include "tests/support/library_place.h"

#include "tests/support/library_xml.h"
#include "tests/support/preference_file.h"

namespace fs = std::filesystem;

namespace {

// "C:/..." with forward slashes, or the path itself.
std::string StyledPath(const LibraryPlace &place, const fs::path &path) {
    if (place.style == PathStyle::kNative) return path.string();
    return "C:/" + fs::relative(path, place.home).generic_string();
}

std::string StyledBackslashPath(const LibraryPlace &place, const fs::path &path) {
    return BackslashPath(StyledPath(place, path));
}

// TEMP stays a path of this system in either style, as others than the driver read it too.
EnvironmentValues Environment(const LibraryPlace &place, const fs::path &app_data, const fs::path &wine) {
    const bool native = place.style == PathStyle::kNative;
    return {{"APPDATA", native ? app_data.string() : StyledBackslashPath(place, app_data)},
            {"TEMP", (place.home / "Temp").string()},
            {"WINEPREFIX", wine.string()},
            {"HOME", place.home.string()},
            {"XDG_CONFIG_HOME", (place.home / ".config").string()}};
}

}  // namespace

std::string LibraryPlace::Location(const fs::path &file) const {
    return LocationUrl(StyledPath(*this, file));
}

LibraryPlace MakeLibraryPlace(const fs::path &folder, PathStyle style, const fs::path &library_xml) {
    const fs::path home = folder / "home";
    const fs::path library_folder = home / "Music" / "iTunes";
    LibraryPlace place{
        .home = home,
        .style = style,
        .library_xml = library_xml.empty() ? library_folder / "iTunes Music Library.xml" : library_xml,
        .media_folder = library_folder / "iTunes Media",
        .add_folder = library_folder / "iTunes Media" / "Automatically Add to iTunes",
        .environment = {}};
    const fs::path app_data = home / "AppData";
    const fs::path drives = folder / "wine" / "dosdevices";
    for (const fs::path &needed : {place.add_folder, home / "Temp", drives})
        fs::create_directories(needed);
    if (!fs::is_symlink(drives / "c:")) fs::create_directory_symlink(home, drives / "c:");
    PreferenceFile{.media_folder = StyledBackslashPath(place, place.media_folder),
                   .library_xml = StyledBackslashPath(place, place.library_xml),
                   .block_length = kPreferenceFlagIndex + 1}
        .WriteUnder(app_data);
    place.environment = Environment(place, app_data, folder / "wine");
    return place;
}
